// agents/ChipsetFile.h
//
// The file that says how to recognise a chipset and where the bits of its functions lie: "SBXCfg.ini". What
// is done with a bit is CHwSBX's.
#pragma once

#include "foundation/OrvlCfg.h"

#include <cstddef>

/// What a number that isn't in the file is read as.
constexpr int kMissing = -1;

/// Room for a section's name, which can be a chipset's name with a word behind it.
constexpr std::size_t kSectionCapacity = text::kPathCapacity + 16;

/// How a register is reached.
enum class RegisterKind
{
    PciConfig,
    Memory,
    Io
};

/// Where a function's bit lies, as its section says. A key that is missing is -1.
struct FunctionEntry
{
    int bus;
    int device;
    int function;
    int addressOffset;
    int addressSize;
    int valueOffset;
    int valueSize;
    int bit;
    int disableType; ///< the bit's value while the function is enabled
    RegisterKind kind;
};

/// Opens the file. False, with a line in the log, when it isn't there.
[[nodiscard]] bool InitializeChipsetFile(CORVLCfg& file) noexcept;

/// The kind that a section's "RegisterType" names. False for none.
[[nodiscard]] bool ReadRegisterKind(CORVLCfg& file, const wchar_t* section, RegisterKind& kind) noexcept;

/// True when `name`, case-sensitive, stands in the chipset's list of functions.
bool IsListed(CORVLCfg& file, const wchar_t* chipset, const wchar_t* name) noexcept;

/// Reads a function's section. False when it lacks something that its kind of register needs.
[[nodiscard]] bool ReadFunctionEntry(CORVLCfg& file, const wchar_t* section, FunctionEntry& entry) noexcept;
