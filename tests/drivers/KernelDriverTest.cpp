// drivers/KernelDriverTest.cpp
//
// The kernel driver's protocol: what each I/O control takes, does and refuses.

#include "notebook/KernelDriver.h"
#include "drivers/DriverRecords.h"
#include "notebook/Chipset.h"
#include "notebook/EmbeddedController.h"
#include "notebook/Machine.h"
#include "notebook/Processor.h"
#include "notebook/Text.h"
#include "support/NotebookTest.h"

#include <windows.h>

#include <cstring>
#include <thread>

namespace
{

using namespace simulated;

using Bytes = std::vector<BYTE>;

constexpr PciAddress kBridge = {0, 31, 0};
constexpr const wchar_t* kBridgeName = L"\\Device\\NTPNP_PCI0005";
constexpr DWORD kRegisters = 0xFED1C000;

template <class Record>
Bytes ToBytes(const Record& record)
{
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

/// A message of a record with data: the record without its one byte of data, plus `data`.
template <class Record>
Bytes ToMessage(const Record& record, const Bytes& data)
{
    Bytes bytes(sizeof record - 1 + data.size());
    std::memcpy(bytes.data(), &record, offsetof(Record, data));
    std::memcpy(bytes.data() + offsetof(Record, data), data.data(), data.size());
    return bytes;
}

Bytes Method(const char* name, DWORD first, DWORD second = 0, DWORD third = 0)
{
    orvlebl::MethodInput input = {{}, {first, second, third}};
    std::memcpy(input.name, name, sizeof input.name);
    return ToBytes(input);
}

orvlebl::PciAccess PciHead(const wchar_t* name, DWORD offset, DWORD length)
{
    orvlebl::PciAccess access = {{}, offset, length, {}};
    std::copy_n(name, Length(name), access.name);
    return access;
}

Bytes Property(DWORD number, const wchar_t* name)
{
    orvlebl::PropertyQuery query = {number, {}};
    std::copy_n(name, Length(name), query.name);
    return ToBytes(query);
}

Bytes MemoryRead(const Bytes& mapping, DWORD length)
{
    orvlebl::MemoryAccess access = {{}, length, {}};
    std::memcpy(access.address, mapping.data(), sizeof access.address);
    return ToBytes(access);
}

Bytes MemoryWrite(const Bytes& mapping, const Bytes& data)
{
    orvlebl::MemoryAccess access = {{}, static_cast<DWORD>(data.size()), {}};
    std::memcpy(access.address, mapping.data(), sizeof access.address);
    return ToMessage(access, data);
}

} // namespace

class KernelDriverTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        m_driver = Open();
        ASSERT_NE(INVALID_HANDLE_VALUE, m_driver);
    }
    void TearDown() override
    {
        CloseHandle(m_driver);
        NotebookTest::TearDown();
    }

    static HANDLE Open()
    {
        return CreateFileW(L"\\\\.\\orvlebl", GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    }

    /// Sends a request; its error. `output` gets what came back.
    DWORD Send(DWORD code, Bytes input, std::size_t outputSize)
    {
        output.assign(outputSize, 0xCC);
        DWORD returned = 0;
        const BOOL done = DeviceIoControl(
            m_driver, code, input.empty() ? nullptr : input.data(), static_cast<DWORD>(input.size()),
            output.empty() ? nullptr : output.data(), static_cast<DWORD>(outputSize), &returned, nullptr);
        output.resize(returned);
        return done ? DWORD{ERROR_SUCCESS} : GetLastError();
    }

    DWORD ReadMsr(DWORD index)
    {
        return Send(orvlebl::kReadMsr, ToBytes(index), sizeof(orvlebl::Msr));
    }
    DWORD WriteMsr(DWORD index, DWORD high, DWORD low)
    {
        return Send(orvlebl::kWriteMsr, ToBytes(orvlebl::Msr{index, high, low}), 0);
    }
    DWORD Map(DWORD address, DWORD length)
    {
        const DWORD error = Send(orvlebl::kMapMemory, ToBytes(orvlebl::MapInput{address, 0, length, 0}), 16);
        mapping = output;
        return error;
    }
    DWORD Unmap()
    {
        return Send(orvlebl::kUnmapMemory, mapping, 0);
    }

    Bytes output;
    Bytes mapping;

private:
    HANDLE m_driver = INVALID_HANDLE_VALUE;
};

TEST_F(KernelDriverTest, EachControlTakesItsExactSizesAlone)
{
    ASSERT_EQ(0U, Map(kRegisters, 16));
    const struct
    {
        DWORD code;
        Bytes input;
        std::size_t outputSize;
        bool takesMoreOutput = false;
    } cases[] = {
        {0x82260000, Method("GRDI", 0xC0), 4},
        {0x82260000, Method("_STA", 0), 4},
        {0x82260000, Method("EBTR", 12, 0, 15), 48},
        {0x82260004, ToBytes(DWORD{0x198}), 12},
        {0x82260008, ToBytes(orvlebl::Msr{0x19A, 0, 2}), 0},
        {0x8226000C, ToBytes(PciHead(kBridgeName, 0, 4)), 4},
        {0x82260010, ToMessage(PciHead(kBridgeName, 0x44, 2), {1, 2}), 0},
        {0x82260014, ToBytes(orvlebl::PortAccess{0x1000, 2, 2, {}}), 2},
        {0x82260018, ToMessage(orvlebl::PortAccess{0xB2, 1, 1, {}}, {0x55}), 0},
        {0x82260024, MemoryRead(mapping, 4), 4},
        {0x82260028, MemoryWrite(mapping, {1, 2, 3, 4}), 0},
        {0x8226002C, Property(14, kBridgeName), 4, true},
        {0x82260020, mapping, 0},
        {0x8226001C, ToBytes(orvlebl::MapInput{kRegisters, 0, 4, 0}), 16},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.code);
        Bytes longer = row.input;
        longer.push_back(0);
        const Bytes shorter(row.input.begin(), row.input.end() - 1);
        EXPECT_EQ(87U, Send(row.code, longer, row.outputSize));
        EXPECT_EQ(87U, Send(row.code, shorter, row.outputSize));
        EXPECT_EQ(87U, Send(row.code, {}, row.outputSize));
        if (row.outputSize != 0)
        {
            EXPECT_EQ(87U, Send(row.code, row.input, row.outputSize - 1));
        }
        if (!row.takesMoreOutput)
        {
            EXPECT_EQ(87U, Send(row.code, row.input, row.outputSize + 1));
        }
        EXPECT_EQ(0U, Send(row.code, row.input, row.outputSize));
        EXPECT_EQ(row.outputSize, output.size());
        mapping = row.code == orvlebl::kMapMemory ? output : mapping;
    }
    EXPECT_EQ(0U, Unmap());
    EXPECT_EQ(0U, KernelDriver::LiveMappings());
}

TEST_F(KernelDriverTest, TheDriverCanBeAbsentBusyOrFailing)
{
    const Bytes input = Method("GRDI", 0xC0);
    EXPECT_EQ(1U, Send(0x82260001, input, 4)) << "no such control";
    KernelDriver::SetBusy(true);
    EXPECT_EQ(170U, Send(orvlebl::kEvaluateMethod, input, 4));
    const HANDLE second = Open(); // it isn't exclusive, and being busy doesn't keep it from being opened
    EXPECT_NE(INVALID_HANDLE_VALUE, second);
    CloseHandle(second);
    KernelDriver::RefuseOpening(ERROR_ACCESS_DENIED);
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open());
    EXPECT_EQ(5U, GetLastError());
}

TEST_F(KernelDriverTest, ControlMethodsReadAndWriteTheController)
{
    EmbeddedController::SetItem(EmbeddedController::k3G, EmbeddedController::kNotFitted);
    EmbeddedController::SetBattery(15, {0x12, 0x34, 0x56, 0x78, 0x1FF, 0, 0, 0, 0, 0, 0, 0xFFFFFFFF});
    const struct
    {
        Bytes input;
        std::size_t outputSize;
        DWORD error;
        Bytes output;
    } cases[] = {
        {Method("GRDI", 0xC0), 4, 0, {5, 0, 0, 0}},
        {Method("GWRI", 0xC0, 7), 4, 0, {1, 0, 0, 0}},
        {Method("GRDI", 0xC0), 4, 0, {7, 0, 0, 0}},
        {Method("GWRI", 0xC3, 1), 4, 0, {0, 0, 0, 0}},
        {Method("GRDI", 0xC3), 4, 0, {0xFF, 0, 0, 0}},
        {Method("GRDI", 0xC5), 4, 2, {}},
        {Method("GWRI", 0xC5, 1), 4, 2, {}},
        {Method("_STA", 0), 4, 0, {0x0F, 0, 0, 0}},
        {Method("grdi", 0xC0), 4, 2, {}},
        {Method("XXXX", 0), 4, 2, {}},
        {Method("EBTR", 12, 0, 14), 48, 2, {}},
        {Method("EBTR", 11, 0, 15), 48, 2, {}},
        {Method("EBTR", 12, 0, 15), 48, 0, {0x12, 0, 0, 0, 0x34, 0, 0, 0, 0x56, 0,    0,    0,
                                            0x78, 0, 0, 0, 0xFF, 1, 0, 0, 0,    0,    0,    0,
                                            0,    0, 0, 0, 0,    0, 0, 0, 0,    0,    0,    0,
                                            0,    0, 0, 0, 0,    0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(row.error, Send(orvlebl::kEvaluateMethod, row.input, row.outputSize));
        EXPECT_EQ(row.output, output);
    }
    EXPECT_EQ("0x07", Machine::Read("EmbeddedController", "0xC0")); // where other processes read it
}

TEST_F(KernelDriverTest, EachCoreHasItsOwnRegisters)
{
    // A thread of its own, since the affinity stays with the thread.
    std::thread(
        [this]
        {
            const struct
            {
                DWORD control;
                DWORD status; ///< low half of performance status afterwards; it runs as fast as it can
            } cases[] = {{0x060A, 0x0600060A}, {0x1F15, 0x06000C15}, {0x0715, 0x06000715}};
            SetThreadAffinityMask(GetCurrentThread(), 1U << 3);
            for (const auto& row : cases)
            {
                EXPECT_EQ(0U, WriteMsr(0x199, 7, row.control));
                EXPECT_EQ(0U, ReadMsr(0x198));
                EXPECT_EQ(ToBytes(orvlebl::Msr{0x198, 0x0C15, row.status}), output);
                EXPECT_EQ(0U, ReadMsr(0x199));
                EXPECT_EQ(ToBytes(orvlebl::Msr{0x199, 7, row.control}), output);
            }
            SetThreadAffinityMask(GetCurrentThread(), 1U << 1);
            EXPECT_EQ(0U, ReadMsr(0x198));
            EXPECT_EQ(ToBytes(orvlebl::Msr{0x198, 0x0C15, 0x06000C15}), output);
        })
        .join();
    EXPECT_EQ(2U, ReadMsr(0x1A0));
    EXPECT_EQ(2U, WriteMsr(0x1A0, 0, 0));
    EXPECT_EQ(5U, WriteMsr(0x198, 0, 0));
}

TEST_F(KernelDriverTest, PortsAreBytesInARow)
{
    IoPorts::Set(0x80, 4, 0x04030201);
    const struct
    {
        orvlebl::PortAccess access;
        std::size_t outputSize;
        DWORD error;
        Bytes output;
    } cases[] = {
        {{0x80, 4, 4, {}}, 4, 0, {1, 2, 3, 4}}, {{0x81, 2, 2, {}}, 2, 0, {2, 3}},
        {{0x83, 1, 1, {}}, 1, 0, {4}},          {{0x80, 3, 3, {}}, 3, 87, {}},
        {{0x80, 0, 0, {}}, 1, 87, {}},          {{0x80, 2, 4, {}}, 2, 87, {}},
        {{0x83, 2, 2, {}}, 2, 2, {}},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(row.error, Send(orvlebl::kReadPort, ToBytes(row.access), row.outputSize));
        EXPECT_EQ(row.output, output);
    }
    EXPECT_EQ(0U, Send(orvlebl::kWritePort, ToMessage(orvlebl::PortAccess{0x81, 2, 2, {}}, {9, 8}), 0));
    EXPECT_EQ(0x04080901U, IoPorts::Read(0x80, 4));
    EXPECT_EQ(87U, Send(orvlebl::kWritePort, ToMessage(orvlebl::PortAccess{0x80, 3, 3, {}}, {1, 1, 1}), 0));
    EXPECT_EQ(2U, Send(orvlebl::kWritePort, ToMessage(orvlebl::PortAccess{0x84, 1, 1, {}}, {1}), 0));
}

TEST_F(KernelDriverTest, ConfigurationSpaceIsReachedByDeviceObject)
{
    const auto read = [&](const wchar_t* name, DWORD offset, DWORD length)
    { return Send(orvlebl::kReadPci, ToBytes(PciHead(name, offset, length)), length); };
    const auto write = [&](DWORD offset, const Bytes& data)
    {
        const auto head = PciHead(kBridgeName, offset, static_cast<DWORD>(data.size()));
        return Send(orvlebl::kWritePci, ToMessage(head, data), 0);
    };
    EXPECT_EQ(0U, read(kBridgeName, 0, 4));
    EXPECT_EQ((Bytes{0x86, 0x80, 0xB9, 0x27}), output);
    EXPECT_EQ(0U, write(0x4E, {1, 2, 3, 4})); // across two rows
    EXPECT_EQ(0U, read(kBridgeName, 0x4D, 6));
    EXPECT_EQ((Bytes{0, 1, 2, 3, 4, 0}), output);
    EXPECT_EQ(0U,
              write(2, {0xFF, 0xFF, 0x05, 0x00})); // the device number stays, the command register doesn't
    EXPECT_EQ(0U, read(kBridgeName, 0, 6));
    EXPECT_EQ((Bytes{0x86, 0x80, 0xB9, 0x27, 0x05, 0x00}), output);
    EXPECT_EQ(0U, read(kBridgeName, 254, 4));
    EXPECT_EQ(2U, output.size());
    EXPECT_EQ(0U, read(kBridgeName, 0xFFFFFFFF, 4));
    EXPECT_EQ(0U, output.size());
    EXPECT_EQ(87U, write(254, {1, 2, 3, 4}));
    EXPECT_EQ(87U, write(0xFFFFFFFF, {1, 2, 3, 4}));

    auto unterminated = PciHead(kBridgeName, 0, 4);
    std::fill(std::begin(unterminated.name), std::end(unterminated.name), L'x');
    EXPECT_EQ(87U, Send(orvlebl::kReadPci, ToBytes(unterminated), 4));

    PciBus::Move(20, kBridge); // hot plug: the function answers under another name
    EXPECT_EQ(2U, read(kBridgeName, 0, 4));
    EXPECT_EQ(0U, read(L"\\Device\\NTPNP_PCI0020", 0, 4));
    EXPECT_EQ((Bytes{0x86, 0x80, 0xB9, 0x27}), output);

    PciBus::Add(40, {3, 4, 5}, 0x1234, 0x5678);
    const wchar_t* const name = L"\\device\\ntpnp_pci0040"; // object names ignore case
    EXPECT_EQ(0U, Send(orvlebl::kGetProperty, Property(14, name), 4));
    EXPECT_EQ((Bytes{3, 0, 0, 0}), output);
    EXPECT_EQ(0U, Send(orvlebl::kGetProperty, Property(16, name), 260));
    EXPECT_EQ((Bytes{5, 0, 4, 0}), output);
    EXPECT_EQ(2U, Send(orvlebl::kGetProperty, Property(0, name), 260));
    PciBus::Remove(40);
    EXPECT_EQ(2U, Send(orvlebl::kGetProperty, Property(14, name), 4));
}

TEST_F(KernelDriverTest, MappedMemoryIsReadAndWrittenFromItsStart)
{
    PhysicalMemory::SetWord(kRegisters + 0x3418, 0x44332211);
    ASSERT_EQ(0U, Map(kRegisters + 0x3419, 4)); // needn't be aligned
    EXPECT_EQ(0U, Send(orvlebl::kReadMemory, MemoryRead(mapping, 3), 3));
    EXPECT_EQ((Bytes{0x22, 0x33, 0x44}), output);
    EXPECT_EQ(0U, Send(orvlebl::kWriteMemory, MemoryWrite(mapping, {0xAA, 0xBB, 0xCC, 0xDD}), 0));
    EXPECT_EQ(0xCCBBAA11U, PhysicalMemory::Word(kRegisters + 0x3418));
    EXPECT_EQ(0xDDU, PhysicalMemory::Word(kRegisters + 0x341C));
    EXPECT_EQ(87U, Send(orvlebl::kReadMemory, MemoryRead(mapping, 5), 5));
    EXPECT_EQ(87U, Send(orvlebl::kWriteMemory, MemoryWrite(mapping, {1, 2, 3, 4, 5}), 0));
    EXPECT_EQ(0U, Unmap());
    EXPECT_EQ(2U, Unmap());
    EXPECT_EQ(2U, Send(orvlebl::kReadMemory, MemoryRead(mapping, 3), 3));

    EXPECT_EQ(2U, Map(kRegisters + 0x4000, 1));
    EXPECT_EQ(2U, Map(kRegisters + 0x3FFF, 2));
    EXPECT_EQ(2U, Map(0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_EQ(87U, Map(kRegisters, 0));
}
