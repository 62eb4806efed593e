// msvcrt/Runtime.cpp
//
// The public functions of the runtime. Formatting is no entrance of the platform: it works in memory alone,
// and a fault there would be none that Windows knows.

#include "kernel32/Paths.h"
#include "kernel32/ShareModes.h"
#include "msvcrt/Format.h"

#include "notebook/PlatformCall.h"
#include "notebook/Text.h"

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

// What an opening mode asks for.
struct Mode
{
    std::string native;
    bool writes;
    bool isValid;
};

// A letter of r, w and a, then + and one of b and t in any order.
Mode ReadMode(std::string_view text)
{
    const bool isKnown = !text.empty() && std::string_view("rwa").find(text[0]) != std::string_view::npos;
    if (!isKnown || text.substr(1).find_first_not_of("+bt") != std::string_view::npos)
    {
        return {{}, false, false};
    }
    const bool both = text.find('+') != std::string_view::npos;
    return {std::string(text.substr(0, 1)) + (both ? "+" : "") + "e", both || text[0] != 'r', true};
}

DWORD OpenStream(const std::string& path, const Mode& mode, FILE*& stream)
{
    if (!mode.isValid)
    {
        errno = EINVAL;
        return ERROR_INVALID_PARAMETER;
    }
    paths::Place place;
    if (const DWORD error = paths::Find(path, place); error != ERROR_SUCCESS)
    {
        errno = error == ERROR_INVALID_NAME ? EINVAL : ENOENT;
        return error;
    }
    const DWORD access = mode.writes ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
    const DWORD refusal = share_modes::Check(place.host, access);
    if (refusal != ERROR_SUCCESS || (mode.writes && place.IsReadOnly()) || place.IsFolder())
    {
        errno = EACCES;
        return refusal != ERROR_SUCCESS ? refusal : static_cast<DWORD>(ERROR_ACCESS_DENIED);
    }
    stream = std::fopen(place.host.c_str(), mode.native.c_str());
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
                                  stream.error = OpenStream(name, ReadMode(ToUtf8(mode)), stream.value);
                                  return stream;
                              });
}

SIM_API int _vsnwprintf(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments)
{
    return runtime::Format(target, count, format, arguments);
}

SIM_API int _vsnprintf(char* target, std::size_t count, const char* format, va_list arguments)
{
    return runtime::Format(target, count, format, arguments);
}

SIM_API int _snwprintf(wchar_t* target, std::size_t count, const wchar_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = runtime::Format(target, count, format, arguments);
    va_end(arguments);
    return length;
}
