// plugin/FileName.cpp
//
// The names of files in requests.

#include "plugin/FileName.h"

#include "foundation/Text.h"

#include <algorithm>
#include <iterator>

namespace
{

struct Device
{
    const wchar_t* name;
    bool isNumbered;
};

// All names have the same length.
constexpr Device kDevices[] = {
    {L"CON", false}, {L"PRN", false}, {L"AUX", false}, {L"NUL", false}, {L"COM", true}, {L"LPT", true},
};
constexpr std::size_t kDeviceLength = 3;

// The system takes the superscript digits of Latin-1 for digits.
constexpr bool IsPortNumber(wchar_t character) noexcept
{
    return (character >= L'1' && character <= L'9') || character == 0xB9 || character == 0xB2 ||
           character == 0xB3;
}

// An extension and the blanks in front of it don't count.
bool IsDevice(const wchar_t* name) noexcept
{
    if (text::Length(name, kDeviceLength) < kDeviceLength)
    {
        return false;
    }
    const wchar_t stem[] = {name[0], name[1], name[2], L'\0'};
    const auto* const device =
        std::find_if(std::begin(kDevices), std::end(kDevices),
                     [&](const Device& row) { return text::EqualIgnoringCase(row.name, stem); });
    if (device == std::end(kDevices))
    {
        return false;
    }
    const wchar_t* rest = name + kDeviceLength;
    if (device->isNumbered && !IsPortNumber(*rest++))
    {
        return false;
    }
    while (*rest == L' ')
    {
        ++rest;
    }
    return *rest == L'\0' || *rest == L'.';
}

} // namespace

bool IsFileName(const wchar_t* name) noexcept
{
    return name[0] != L'\0' && !text::ContainsAny(name, L"\\/:\r\n") && !text::Contains(name, L"..") &&
           !IsDevice(name);
}
