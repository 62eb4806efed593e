// modules/msvcrt/Runtime.cpp
//
// The public functions of the runtime. Formatting isn't traced as a platform call: it works in memory alone,
// and can't fail on Windows.
//
// Known differences from Windows: the conversions are d, i, u, x, X, s and S, with the flags "-" and "0", a
// width of numbers, and the sizes h, l and w. Any other letter is shown as itself and reads no argument.

#include "base/ChangeCount.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

using namespace simulated;

namespace
{

constexpr std::string_view kLogFolder = "c:/temp1234567890/";
constexpr std::string_view kLogEnd = ".log";

// Attempts to open a log are counted apart from the files that a request works on.
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
    const bool reads = mode == "rb";
    DWORD error = paths::Find(path, place);
    if (error == ERROR_SUCCESS)
    {
        error = share_modes::Check(place.host, reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE);
        const bool isDenied = place.IsFolder() || (place.IsReadOnly() && !reads);
        error = error == ERROR_SUCCESS && isDenied ? static_cast<DWORD>(ERROR_ACCESS_DENIED) : error;
    }
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    stream = std::fopen(place.host.c_str(), (mode + 'e').c_str());
    if (!place.Exists() || mode.starts_with('w'))
    {
        ChangeCount::Announce(); // what is then written to the stream isn't counted
    }
    return stream != nullptr ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

// What a conversion shows: a number by the native printf, or wide or narrow text. `place` moves behind it.
std::u16string Convert(const wchar_t*& place, va_list* arguments)
{
    std::string number = "%"; // the conversion of a number as the native printf knows it
    for (; *place == L'-' || (*place >= L'0' && *place <= L'9'); ++place)
    {
        number += static_cast<char>(*place);
    }
    const wchar_t size = *place == L'h' || *place == L'l' || *place == L'w' ? *place++ : L' ';
    const wchar_t letter = *place;
    place += letter == 0 ? 0 : 1;
    const std::string_view kNumbers = "diuxX";
    if (letter < 0x80 && kNumbers.find(static_cast<char>(letter)) != std::string_view::npos)
    {
        number += size == L'h' ? "h" : ""; // a long has 32 bits
        number += static_cast<char>(letter);
        char shown[64] = {};
        std::snprintf(shown, sizeof shown, number.c_str(), va_arg(*arguments, int));
        return {shown, shown + std::strlen(shown)};
    }
    if (letter != L's' && letter != L'S')
    {
        return letter == 0 ? std::u16string() : std::u16string(1, static_cast<char16_t>(letter));
    }
    // The small letter is wide text as the format is, the capital narrow, unless a size says which.
    const void* const text = va_arg(*arguments, const void*);
    const bool isWide = size == L' ' ? letter == L's' : size != L'h';
    if (text == nullptr)
    {
        return u"(null)";
    }
    const auto* const narrow = static_cast<const unsigned char*>(text);
    const auto* const wide = static_cast<const wchar_t*>(text);
    return isWide ? std::u16string(wide, wide + Length(wide))
                  : std::u16string(narrow, narrow + std::strlen(static_cast<const char*>(text)));
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
    va_list own;
    va_copy(own, arguments);
    std::u16string text;
    while (*format != 0)
    {
        const wchar_t unit = *format++;
        text += unit == L'%' ? Convert(format, &own) : std::u16string(1, static_cast<char16_t>(unit));
    }
    va_end(own);
    std::copy_n(text.begin(), std::min(text.size(), count), target);
    if (text.size() < count)
    {
        target[text.size()] = 0;
    }
    return text.size() > count ? -1 : static_cast<int>(text.size());
}
