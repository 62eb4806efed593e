// modules/msvcrt/Runtime.cpp
//
// The public functions of the runtime. Formatting is no entrance of the platform: it works in memory alone,
// and a fault there would be none that Windows knows.

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"
#include "modules/msvcrt/Format.h"

#include <windows.h>

#include <cerrno>
#include <string_view>

using namespace simulated;

namespace
{

constexpr std::string_view kLogFolder = "c:/temp1234567890/";
constexpr std::string_view kLogEnd = ".log";

// An attempt to open a log counts apart from the files that a request works on.
CallClass ClassOf(std::string path)
{
    for (char& character : path)
    {
        character = character == '\\' ? '/' : character;
    }
    const bool isLog = path.size() > kLogFolder.size() + kLogEnd.size() &&
                       EqualIgnoringCase(path.substr(0, kLogFolder.size()), kLogFolder) &&
                       EqualIgnoringCase(path.substr(path.size() - kLogEnd.size()), kLogEnd);
    return isLog ? CallClass::Log : CallClass::File;
}

DWORD OpenStream(const std::string& path, const std::string& mode, FILE*& stream)
{
    paths::Place place;
    DWORD error = paths::Find(path, place);
    if (error == ERROR_SUCCESS)
    {
        const bool reads = mode == "rb";
        error = share_modes::Check(place.host, reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE);
        const bool isDenied = place.IsFolder() || (place.IsReadOnly() && !reads);
        error = error == ERROR_SUCCESS && isDenied ? static_cast<DWORD>(ERROR_ACCESS_DENIED) : error;
    }
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    stream = std::fopen(place.host.c_str(), (mode + 'e').c_str());
    return stream != nullptr ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

} // namespace

SIM_API FILE* _wfopen(const wchar_t* path, const wchar_t* mode)
{
    const std::string name = ToUtf8(path);
    PlatformCall call(ClassOf(name), "_wfopen", SIM_CALLER);
    call.Arguments(path, mode);
    return call.Result<FILE*>(nullptr,
                              [&]
                              {
                                  Outcome<FILE*> stream;
                                  stream.error = OpenStream(name, ToUtf8(mode), stream.value);
                                  return stream;
                              });
}

SIM_API int _vsnwprintf(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments)
{
    return runtime::Format(target, count, format, arguments);
}
