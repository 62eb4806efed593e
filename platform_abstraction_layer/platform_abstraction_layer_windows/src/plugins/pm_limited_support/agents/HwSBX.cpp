// agents/HwSBX.cpp
//
// Recognises the chipset, and reads and writes the bit of a function.

#include "agents/HwSBX.h"

#include "agents/ChipsetFile.h"
#include "foundation/EntryLimit.h"
#include "foundation/Results.h"

#include <iterator>
#include <utility>

// The register that holds a function's bit, found and ready to be read and written. Memory stays mapped
// from the first read until `Release` or the end of the object.
class CHwSBX::FunctionRegister
{
public:
    explicit FunctionRegister(CHwXA& hardware) noexcept
        : m_hardware(hardware), m_entry(), m_deviceName(), m_address(), m_mapping(), m_value()
    {
    }
    ~FunctionRegister()
    {
        Release();
    }
    FunctionRegister(const FunctionRegister&) = delete;
    FunctionRegister& operator=(const FunctionRegister&) = delete;

    // Finds the register of the function of that name and reads it.
    LONG Open(const wchar_t* chipset, const wchar_t* name) noexcept;

    // The function's bit as it was read, and the register written with another one.
    bool IsSet() const noexcept
    {
        return (m_value & Mask()) != 0;
    }
    LONG Write(bool isSet) noexcept;

    // Unmaps the memory, where it is mapped.
    LONG Release() noexcept;

    int DisableType() const noexcept
    {
        return m_entry.disableType;
    }

private:
    LONG Locate(const wchar_t* chipset, const wchar_t* name) noexcept;
    LONG Read() noexcept;
    LONG FindAddress(CORVLCfg& file, const wchar_t* section) noexcept;
    ULONG Mask() const noexcept
    {
        return 1U << m_entry.bit;
    }
    ULONG Size() const noexcept
    {
        return static_cast<ULONG>(m_entry.valueSize);
    }

    CHwXA& m_hardware;
    FunctionEntry m_entry;
    wchar_t m_deviceName[text::kPathCapacity];
    ULONG m_address; ///< in configuration space, physical memory or I/O space
    void* m_mapping;
    ULONG m_value; ///< of the whole register
};

LONG CHwSBX::FunctionRegister::Open(const wchar_t* chipset, const wchar_t* name) noexcept
{
    const LONG located = Locate(chipset, name);
    return located < 0 ? located : Read();
}

LONG CHwSBX::FunctionRegister::Locate(const wchar_t* chipset, const wchar_t* name) noexcept
{
    CORVLCfg file;
    if (name == nullptr || !InitializeChipsetFile(file) || !IsListed(file, chipset, name) ||
        !ReadFunctionEntry(file, name, m_entry))
    {
        return kGeneralFailure;
    }
    if (const LONG named = m_hardware.GetDeviceName(
            static_cast<ULONG>(m_entry.bus), static_cast<ULONG>(m_entry.device),
            static_cast<ULONG>(m_entry.function), m_deviceName, static_cast<ULONG>(std::size(m_deviceName)));
        named < 0)
    {
        return named;
    }
    m_address = static_cast<ULONG>(m_entry.valueOffset);
    return m_entry.kind == RegisterKind::PciConfig ? kSucceeded : FindAddress(file, name);
}

LONG CHwSBX::FunctionRegister::FindAddress(CORVLCfg& file, const wchar_t* section) noexcept
{
    ULONG base = 0;
    if (const LONG read = m_hardware.ReadPCIConfig(m_deviceName, static_cast<ULONG>(m_entry.addressOffset),
                                                   &base, static_cast<ULONG>(m_entry.addressSize));
        read < 0)
    {
        return read;
    }
    m_address += base & static_cast<ULONG>(file.GetHex(section, L"AddressMask", -1));
    return kSucceeded;
}

LONG CHwSBX::FunctionRegister::Read() noexcept
{
    switch (m_entry.kind)
    {
    case RegisterKind::PciConfig:
        return m_hardware.ReadPCIConfig(m_deviceName, m_address, &m_value, Size());
    case RegisterKind::Io:
        return m_hardware.ReadIoPort(m_address, &m_value, static_cast<USHORT>(Size()));
    case RegisterKind::Memory:
        break;
    }
    auto* physical = reinterpret_cast<void*>(static_cast<ULONG_PTR>(m_address));
    const LONG mapped = m_hardware.MapMemorySpace(physical, Size(), &m_mapping);
    return mapped < 0 ? mapped : m_hardware.ReadMemory(m_mapping, &m_value, Size());
}

LONG CHwSBX::FunctionRegister::Write(bool isSet) noexcept
{
    ULONG value = isSet ? m_value | Mask() : m_value & ~Mask();
    switch (m_entry.kind)
    {
    case RegisterKind::PciConfig:
        return m_hardware.WritePCIConfig(m_deviceName, m_address, &value, Size());
    case RegisterKind::Io:
        return m_hardware.WriteIoPort(m_address, &value, static_cast<USHORT>(Size()));
    case RegisterKind::Memory:
        break;
    }
    return m_hardware.WriteMemory(m_mapping, &value, Size());
}

LONG CHwSBX::FunctionRegister::Release() noexcept
{
    void* mapping = std::exchange(m_mapping, nullptr);
    return mapping == nullptr ? kSucceeded : m_hardware.UnmapMemorySpace(mapping);
}

CHwSBX::CHwSBX() noexcept = default;
CHwSBX::CHwSBX(const CHwSBX&) noexcept = default;
CHwSBX& CHwSBX::operator=(const CHwSBX&) noexcept = default;
CHwSBX::~CHwSBX() = default;

ULONG CHwSBX::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CHwSBX::Setup(int identify) noexcept
{
    if (const LONG opened = CHwXA::Setup(); opened < 0)
    {
        return opened;
    }
    if (m_szChipset[0] != L'\0')
    {
        return kAlreadySetUp;
    }
    CORVLCfg file;
    if (!InitializeChipsetFile(file))
    {
        return kGeneralFailure;
    }
    if (identify == 0)
    {
        return kSucceeded;
    }
    wchar_t section[kSectionCapacity];
    RegisterKind kind{};
    const auto readKind = [&](int index)
    {
        text::Format(section, L"SBX Identification %d", index);
        return ReadRegisterKind(file, section, kind);
    };
    const int count =
        EntryLimit().Take(file.GetInt(L"Device Identifications", L"SBXIdNumbers", kMissing), readKind);
    for (int index = 0; index < count; ++index)
    {
        if (!readKind(index) || kind != RegisterKind::PciConfig)
        {
            continue;
        }
        bool matches = false;
        if (const LONG tested = TestIdentification(file, section, matches); tested < 0)
        {
            return tested;
        }
        if (matches)
        {
            return file.GetString(section, L"Name", m_szChipset) > 0 ? kSucceeded : kGeneralFailure;
        }
    }
    return kGeneralFailure;
}

// Compares a device's configuration space with an identification section.
LONG CHwSBX::TestIdentification(CORVLCfg& file, const wchar_t* section, bool& matches) noexcept
{
    const int bus = file.GetInt(section, L"Bus", kMissing);
    const int device = file.GetInt(section, L"Device", kMissing);
    const int function = file.GetInt(section, L"Function", kMissing);
    const int offset = file.GetInt(section, L"Offset", kMissing);
    const int size = file.GetInt(section, L"ValueSize", kMissing);
    if (bus == kMissing || device == kMissing || function == kMissing ||
        (size != 1 && size != 2 && size != 4))
    {
        return kGeneralFailure;
    }
    const auto expected = static_cast<ULONG>(file.GetHex(section, L"Value", -1));
    wchar_t deviceName[text::kPathCapacity];
    if (const LONG named =
            GetDeviceName(static_cast<ULONG>(bus), static_cast<ULONG>(device), static_cast<ULONG>(function),
                          deviceName, static_cast<ULONG>(std::size(deviceName)));
        named < 0)
    {
        return named;
    }
    ULONG value = 0;
    const LONG read = ReadPCIConfig(deviceName, static_cast<ULONG>(offset), &value, static_cast<ULONG>(size));
    matches = read >= 0 && value == expected;
    return read;
}

LONG CHwSBX::FunctionDisable(const wchar_t* name, int disable) noexcept
{
    FunctionRegister target(*this);
    if (const LONG opened = target.Open(m_szChipset, name); opened < 0)
    {
        return opened;
    }

    // Each type clears the bit for one value of the request alone; what is neither 0 nor 1 never clears it.
    const int type = target.DisableType();
    const bool clears = (type == 1 && disable == 1) || (type == 0 && disable == 0);
    const LONG written = target.Write(!clears);
    const LONG released = target.Release();
    return written < 0 ? written : released;
}

LONG CHwSBX::GetFunctionDisable(const wchar_t* name, int* disabled) noexcept
{
    if (disabled == nullptr)
    {
        return kGeneralFailure;
    }
    FunctionRegister target(*this);
    if (const LONG opened = target.Open(m_szChipset, name); opened < 0)
    {
        return opened;
    }
    const int bit = target.IsSet() ? 1 : 0;
    *disabled = bit != target.DisableType() ? 1 : 0;
    return kSucceeded;
}
