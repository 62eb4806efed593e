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

/// A request and what comes of it; the rows of a table are sent one after the other.
struct Request
{
    DWORD code;
    Bytes input;
    std::size_t outputSize;
    DWORD error;
    Bytes output;
};

Request ReadItem(DWORD item, DWORD error, const Bytes& value)
{
    return {orvlebl::kEvaluateMethod, Method("GRDI", item), 4, error, value};
}
Request WriteItem(DWORD item, DWORD value, DWORD error, const Bytes& answer)
{
    return {orvlebl::kEvaluateMethod, Method("GWRI", item, value), 4, error, answer};
}
Request ReadPort(WORD port, WORD size, DWORD error, const Bytes& value)
{
    return {orvlebl::kReadPort, ToBytes(orvlebl::PortAccess{port, size, size, {}}), size, error, value};
}
Request WritePort(WORD port, DWORD error, const Bytes& value)
{
    const WORD size = static_cast<WORD>(value.size());
    return {orvlebl::kWritePort, ToMessage(orvlebl::PortAccess{port, size, size, {}}, value), 0, error, {}};
}
Request ReadPci(const wchar_t* name, DWORD offset, DWORD length, DWORD error, const Bytes& value)
{
    return {orvlebl::kReadPci, ToBytes(PciHead(name, offset, length)), length, error, value};
}
Request WritePci(DWORD offset, DWORD error, const Bytes& value)
{
    const DWORD length = static_cast<DWORD>(value.size());
    return {orvlebl::kWritePci, ToMessage(PciHead(kBridgeName, offset, length), value), 0, error, {}};
}
Request ReadProperty(DWORD number, const wchar_t* name, std::size_t size, DWORD error, const Bytes& value)
{
    return {orvlebl::kGetProperty, Property(number, name), size, error, value};
}

TEST_F(KernelDriverTest, RequestsReachTheHardware)
{
    constexpr const wchar_t* kMoved = L"\\Device\\NTPNP_PCI0020";
    constexpr const wchar_t* kFolded = L"\\device\\ntpnp_pci0040"; // object names ignore case
    EmbeddedController::SetItem(EmbeddedController::k3G, EmbeddedController::kNotFitted);
    IoPorts::Set(0x80, 4, 0x04030201);
    PciBus::Add(40, {3, 4, 5}, 0x1234, 0x5678);
    auto unterminated = PciHead(kBridgeName, 0, 4);
    std::fill(std::begin(unterminated.name), std::end(unterminated.name), L'x');
    const Request requests[] = {
        ReadItem(0xC0, 0, {5, 0, 0, 0}),
        WriteItem(0xC0, 7, 0, {1, 0, 0, 0}),
        ReadItem(0xC0, 0, {7, 0, 0, 0}),
        WriteItem(0xC3, 1, 0, {0, 0, 0, 0}),
        ReadItem(0xC3, 0, {0xFF, 0, 0, 0}),
        ReadItem(0xC5, 2, {}),
        WriteItem(0xC5, 1, 2, {}),
        {orvlebl::kEvaluateMethod, Method("grdi", 0xC0), 4, 2, {}},
        {orvlebl::kEvaluateMethod, Method("EBTR", 12, 0, 14), 48, 2, {}},
        {orvlebl::kEvaluateMethod, Method("EBTR", 11, 0, 15), 48, 2, {}},

        ReadPort(0x80, 4, 0, {1, 2, 3, 4}),
        ReadPort(0x83, 1, 0, {4}),
        ReadPort(0x80, 3, 87, {}),
        {orvlebl::kReadPort, ToBytes(orvlebl::PortAccess{0x80, 2, 4, {}}), 2, 87, {}},
        ReadPort(0x83, 2, 2, {}),
        WritePort(0x81, 0, {9, 8}),
        ReadPort(0x80, 4, 0, {1, 9, 8, 4}),
        WritePort(0x80, 87, {1, 1, 1}),
        WritePort(0x84, 2, {1}),

        ReadPci(kBridgeName, 0, 4, 0, {0x86, 0x80, 0xB9, 0x27}),
        WritePci(0x4E, 0, {1, 2, 3, 4}), // across two rows
        ReadPci(kBridgeName, 0x4D, 6, 0, {0, 1, 2, 3, 4, 0}),
        WritePci(2, 0, {0xFF, 0xFF, 0x05, 0x00}), // the device number stays, the command register doesn't
        ReadPci(kBridgeName, 0, 6, 0, {0x86, 0x80, 0xB9, 0x27, 0x05, 0x00}),
        ReadPci(kBridgeName, 254, 4, 0, {0, 0}),
        ReadPci(kBridgeName, 0xFFFFFFFF, 4, 0, {}),
        WritePci(254, 87, {1, 2, 3, 4}),
        WritePci(0xFFFFFFFF, 87, {1, 2, 3, 4}),
        {orvlebl::kReadPci, ToBytes(unterminated), 4, 87, {}},
        ReadPci(kMoved, 0, 4, 2, {}),
        ReadProperty(14, kFolded, 4, 0, {3, 0, 0, 0}),
        ReadProperty(16, kFolded, 260, 0, {5, 0, 4, 0}),
        ReadProperty(0, kFolded, 260, 2, {}),
    };
    for (const Request& request : requests)
    {
        SCOPED_TRACE(&request - requests);
        EXPECT_EQ(request.error, Send(request.code, request.input, request.outputSize));
        EXPECT_EQ(request.output, output);
    }
    EXPECT_EQ("0x07", Machine::Read("EmbeddedController", "0xC0")); // where other processes read it

    PciBus::Move(20, kBridge); // hot plug: the function answers under another name
    const Request moved = ReadPci(kMoved, 0, 4, 0, {});
    const Request gone = ReadPci(kBridgeName, 0, 4, 0, {});
    EXPECT_EQ(0U, Send(moved.code, moved.input, 4));
    EXPECT_EQ(2U, Send(gone.code, gone.input, 4));
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
