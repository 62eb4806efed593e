// modules/kernel32/DebuggerChannel.cpp
//
// OutputDebugString: texts go to the notebook's list instead of a debugger.

#include "base/CodePage.h"
#include "base/DebugOutput.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <windows.h>

using namespace simulated;

namespace
{

void Send(PlatformCall& call, const std::string& text)
{
    if (!call.IsRefused())
    {
        DebugOutput::Send(text);
    }
    call.AnswerNothing();
}

} // namespace

SIM_API void WINAPI OutputDebugStringW(LPCWSTR text)
{
    PlatformCall call(CallClass::System, "OutputDebugStringW", SIM_CALLER);
    call.Arguments(text);
    Send(call, ToUtf8(text));
}

SIM_API void WINAPI OutputDebugStringA(LPCSTR text)
{
    PlatformCall call(CallClass::System, "OutputDebugStringA", SIM_CALLER);
    call.Arguments(text);
    Send(call, text == nullptr ? std::string() : Decode(Machine::AnsiEncoding(), text));
}
