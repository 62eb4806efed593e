// scheme/SchemeFiles.h
//
// How each configuration file of the scheme side is found and opened. "ORVLCfg.ini" is the root and names
// the others: the scheme values file and the user scheme file, one of each for the machine, the setting
// catalogue of the installation, and the scheme display file, one for each user.
#pragma once

#include "foundation/OrvlCfg.h"
#include "foundation/OrvlProfile.h"

#include <cstddef>

namespace files
{

constexpr std::size_t kTextCapacity = 255;

/// A file's name, a section's name or a short text of a file.
using ShortText = wchar_t[kTextCapacity];

/// Where the root file names another file.
struct NameKey
{
    const wchar_t* section;
    const wchar_t* key;
};
constexpr NameKey kValuesName{L"ORVLCfg", L"PowerScheme"};
constexpr NameKey kCatalogueName{L"ORVLCfg", L"PowerSetting"};
constexpr NameKey kUsersName{L"ORVLCfg", L"UserScheme"};
constexpr NameKey kDisplayName{L"ORVACfg", L"SchemeSettings"};

/// Sections, by format. The first two give the same text for every scheme that can exist.
constexpr const wchar_t* kVariablesSection = L"Scheme %d";
constexpr const wchar_t* kRowSection = L"Scheme %u";
constexpr const wchar_t* kDisplaySection = L"Scheme%d";

/// A key or a section with a number in it.
using NumberedKey = text::Formatted<kTextCapacity>;

/// Opens "ORVLCfg.ini".
[[nodiscard]] bool OpenRoot(CORVLCfg& root) noexcept;

/// Opens the root and reads a file's name; false, with `name` empty, when there is none.
[[nodiscard]] bool FindName(const NameKey& which, ShortText& name) noexcept;

/// Opens the file `name` in the folder of the account in which this process runs, and creates it there.
/// False also for an empty name.
[[nodiscard]] bool OpenOwn(CORVLProfile& file, const ShortText& name) noexcept;

/// The same for the file that the open root names.
[[nodiscard]] bool OpenOwn(CORVLProfile& file, CORVLCfg& root, const NameKey& which) noexcept;

// From the root to the open file in one go; false when one step fails.

[[nodiscard]] bool OpenValues(CORVLProfile& file) noexcept;
[[nodiscard]] bool OpenUsers(CORVLProfile& file) noexcept;

/// The same for a look that must leave no file behind: false also where there is none yet.
[[nodiscard]] bool OpenPresentUsers(CORVLProfile& file) noexcept;

[[nodiscard]] bool OpenCatalogue(CORVLCfg& file) noexcept;

/// `folder` is the user's configuration folder.
[[nodiscard]] bool OpenDisplay(CORVLProfile& file, const wchar_t* folder) noexcept;

/// Removes a scheme's section, stored variables included, from the open scheme values file.
void RemoveScheme(CORVLProfile& values, int index) noexcept;

/// Deletes the file `suffix`, which begins with a backslash, below `folder` and logs `format` with its path.
/// The line reports the attempt: whether the file was there isn't asked.
void DeleteBelow(const wchar_t* folder, const wchar_t* suffix, const wchar_t* format) noexcept;

} // namespace files
