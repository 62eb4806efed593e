// scheme/vista/Backend.cpp
//
// The power manager of major version 6, by GUIDs. It has no operations to add, rename and enumerate schemes
// here. Nothing is logged.

#include "foundation/Owners.h"
#include "scheme/SchemeFiles.h"
#include "scheme/SettingCatalogue.h"
#include "scheme/Variables.h"
#include "scheme/vista/Operations.h"
#include "scheme/vista/PowerDispatch.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

// Power saver, high performance, balanced.
constexpr GUID kStandardSchemes[] = {
    {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}},
    {0x8C5E7FDA, 0xE8BF, 0x4A96, {0x9A, 0x85, 0xA6, 0xE2, 0x3A, 0x8C, 0x63, 0x5C}},
    {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}},
};

bool IsStandardScheme(const GUID& scheme) noexcept
{
    return std::any_of(std::begin(kStandardSchemes), std::end(kStandardSchemes),
                       [&scheme](const GUID& standard)
                       { return std::memcmp(&standard, &scheme, sizeof scheme) == 0; });
}

bool Exists(int index) noexcept
{
    GUID guid;
    return vista::RowToGuid(index, guid);
}

// A scheme that no row names gets the next row.
int Active() noexcept
{
    const auto getActive = PowerDispatch.PowerGetActiveScheme.load();
    GUID* active = nullptr;
    if (getActive == nullptr || getActive(nullptr, &active) != ERROR_SUCCESS)
    {
        return -1;
    }
    const owners::LocalBlock block(active);
    if (active == nullptr)
    {
        return -1;
    }
    const int row = vista::FindRow(*active, vista::NextFreeRow);
    return row >= 0 ? row : vista::AddRow(*active);
}

// Writes the processor's range of the scheme again, so that the operating system follows it. A scheme that
// isn't adaptive has its range fixed already.
void RestateProcessorRange(int index, bool ac) noexcept
{
    const PowerBackend& backend = vista::kBackend;
    const int adaptive = variables::Read(backend, index, ac, VariableOf(kCpuAdaptive));
    const int maximum = variables::Read(backend, index, ac, VariableOf(kCpuSpeedMax));
    const int minimum = variables::Read(backend, index, ac, VariableOf(kCpuSpeedMin));
    if (adaptive != 0)
    {
        variables::Write(backend, index, ac, VariableOf(kCpuSpeedMax), maximum);
        variables::Write(backend, index, ac, VariableOf(kCpuSpeedMin), minimum);
    }
}

bool Activate(int index, const ActivationTexts&, int& previous) noexcept
{
    const auto setActive = PowerDispatch.PowerSetActiveScheme.load();
    GUID scheme;
    if (setActive == nullptr || !vista::RowToGuid(index, scheme))
    {
        return false;
    }
    previous = Active();
    RestateProcessorRange(index, true);
    RestateProcessorRange(index, false);
    return setActive(nullptr, &scheme) == ERROR_SUCCESS;
}

bool Remove(int index) noexcept
{
    const auto deleteScheme = PowerDispatch.PowerDeleteScheme.load();
    GUID scheme;
    if (deleteScheme == nullptr || !vista::RowToGuid(index, scheme) || IsStandardScheme(scheme) ||
        deleteScheme(nullptr, &scheme) != ERROR_SUCCESS)
    {
        return false;
    }
    CORVLProfile values;
    if (!files::OpenValues(values))
    {
        return false;
    }
    files::RemoveScheme(values, index);
    return true;
}

} // namespace

bool vista::FindSetting(const Variable& variable, GUID& subGroup, GUID& setting) noexcept
{
    return !HasSetting(variable) || catalogue::ReadSetting(variable.name, subGroup, setting);
}

bool vista::SystemSetting::Find(int index, const Variable& variable) noexcept
{
    return RowToGuid(index, scheme) && FindSetting(variable, subGroup, setting);
}

constexpr PowerBackend vista::kBackend{
    .unknownRead = nullptr,
    .unknownWrite = nullptr,
    .exists = Exists,
    .maxIndex = NextFreeRow,
    .active = Active,
    .activate = Activate,
    .read = ReadVariable,
    .write = WriteVariable,
    .accepts = Accepts,
    .findSetting = FindSetting,
    .isProtected = [](int) noexcept { return false; },
    .remove = Remove,
    .enumerate = [](PWRSCHEMESENUMPROC, LPARAM) noexcept { return 0; },
    .copy = [](SchemeName&, const wchar_t*, int) noexcept { return -1; },
    .rename = [](int, SchemeName&, const wchar_t*) noexcept { return -1; },
};
