// agents/ChipsetFile.cpp
//
// Reads the chipset file by a table of its keys.

#include "agents/ChipsetFile.h"

#include "foundation/EntryLimit.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace
{

constexpr wchar_t kChipsetFile[] = L"SBXCfg.ini";

struct RegisterName
{
    const wchar_t* name;
    RegisterKind kind;
};

constexpr RegisterName kRegisterNames[] = {
    {L"PCIConfig", RegisterKind::PciConfig},
    {L"Memory", RegisterKind::Memory},
    {L"IO", RegisterKind::Io},
};

enum class KeyForm
{
    Integer,
    Hex
};

// Which functions need a key.
enum class NeededBy
{
    All,
    BasedRegisters ///< those behind a base address: "Memory" and "IO"
};

struct FunctionKey
{
    const wchar_t* key;
    KeyForm form;
    NeededBy neededBy;
    int FunctionEntry::*value;
    int lowest;
    int highest;
};

constexpr int kLowest = (std::numeric_limits<int>::min)();
constexpr int kHighest = (std::numeric_limits<int>::max)();
constexpr int kRegisterSize = sizeof(ULONG);

// In the order in which they are read. Only -1 counts as missing where any number will do.
constexpr FunctionKey kFunctionKeys[] = {
    {L"Bus", KeyForm::Integer, NeededBy::All, &FunctionEntry::bus, kLowest, kHighest},
    {L"Device", KeyForm::Integer, NeededBy::All, &FunctionEntry::device, kLowest, kHighest},
    {L"Function", KeyForm::Integer, NeededBy::All, &FunctionEntry::function, kLowest, kHighest},
    {L"AddressOffset", KeyForm::Hex, NeededBy::BasedRegisters, &FunctionEntry::addressOffset, kLowest,
     kHighest},
    {L"AddressSize", KeyForm::Integer, NeededBy::BasedRegisters, &FunctionEntry::addressSize, 1,
     kRegisterSize},
    {L"ValueOffset", KeyForm::Hex, NeededBy::All, &FunctionEntry::valueOffset, kLowest, kHighest},
    {L"ValueSize", KeyForm::Integer, NeededBy::All, &FunctionEntry::valueSize, 1, kRegisterSize},
    {L"Bit", KeyForm::Integer, NeededBy::All, &FunctionEntry::bit, 0, 31},
    {L"DisableType", KeyForm::Integer, NeededBy::All, &FunctionEntry::disableType, kLowest, kHighest},
};

} // namespace

bool ReadRegisterKind(CORVLCfg& file, const wchar_t* section, RegisterKind& kind) noexcept
{
    wchar_t name[text::kPathCapacity];
    file.GetString(section, L"RegisterType", name);
    const auto* found =
        std::find_if(std::begin(kRegisterNames), std::end(kRegisterNames),
                     [&name](const RegisterName& row) { return text::Equal(name, row.name); });
    if (found == std::end(kRegisterNames))
    {
        return false;
    }
    kind = found->kind;
    return true;
}

bool ReadFunctionEntry(CORVLCfg& file, const wchar_t* section, FunctionEntry& entry) noexcept
{
    for (const FunctionKey& row : kFunctionKeys)
    {
        entry.*row.value = row.form == KeyForm::Hex ? file.GetHex(section, row.key, kMissing)
                                                    : file.GetInt(section, row.key, kMissing);
    }
    if (!ReadRegisterKind(file, section, entry.kind))
    {
        return false;
    }
    return std::all_of(
        std::begin(kFunctionKeys), std::end(kFunctionKeys),
        [&entry](const FunctionKey& row)
        {
            const int value = entry.*row.value;
            const bool isNeeded = row.neededBy == NeededBy::All || entry.kind != RegisterKind::PciConfig;
            return !isNeeded || (value != kMissing && value >= row.lowest && value <= row.highest);
        });
}

bool InitializeChipsetFile(CORVLCfg& file) noexcept
{
    if (!file.Initialize(kChipsetFile))
    {
        CORVLBase::DBGOUT(L"Cannot initialize cfg file %s", kChipsetFile);
        return false;
    }
    return true;
}

bool IsListed(CORVLCfg& file, const wchar_t* chipset, const wchar_t* name) noexcept
{
    const text::Formatted<kSectionCapacity> section(L"%s Devices", chipset);
    wchar_t listed[text::kPathCapacity];
    const auto readName = [&](int index)
    { return file.GetString(section.Text(), text::Formatted<32>(L"Name%d", index).Text(), listed) > 0; };
    const int count = EntryLimit().Take(file.GetInt(section.Text(), L"DeviceNumbers", kMissing), readName);
    for (int index = 0; index < count; ++index)
    {
        readName(index);
        if (text::Equal(listed, name))
        {
            return true;
        }
    }
    return false;
}
