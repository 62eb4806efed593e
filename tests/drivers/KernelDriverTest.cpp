// tests/drivers/KernelDriverTest.cpp
//
// The sizes that each I/O control of the kernel driver demands, as numbers of its protocol. What the controls
// do, and the bytes of the requests, are in tests/agents.

#include "support/LastError.h"
#include "support/NotebookTest.h"

#include <windows.h>

#include <cstring>
#include <utility>
#include <vector>

namespace
{

using KernelDriverTest = NotebookTest;

// A record of zeros but for some bytes.
std::vector<BYTE> Record(std::size_t size, const std::vector<std::pair<std::size_t, BYTE>>& bytes)
{
    std::vector<BYTE> record(size);
    for (const auto& [place, byte] : bytes)
    {
        record[place] = byte;
    }
    return record;
}

// The record with the name of the first bridge in it.
std::vector<BYTE> Named(std::vector<BYTE> record, std::size_t place)
{
    constexpr wchar_t kName[] = L"\\Device\\NTPNP_PCI0005";
    std::memcpy(record.data() + place, kName, sizeof kName);
    return record;
}

struct Control
{
    DWORD code;
    std::vector<BYTE> input;
    DWORD outputSize;
    bool takesMoreOutput = false;
};

TEST_F(KernelDriverTest, EachControlTakesItsExactSizesAlone)
{
    const std::vector<std::pair<std::size_t, BYTE>> brightness = {
        {0, 'G'}, {1, 'R'}, {2, 'D'}, {3, 'I'}, {4, 0xC0}};
    const std::vector<std::pair<std::size_t, BYTE>> battery = {{0, 'E'}, {1, 'B'}, {2, 'T'},
                                                               {3, 'R'}, {4, 12},  {12, 15}};
    const Control controls[] = {
        {0x82260000, Record(16, brightness), 4},                         // evaluate a method
        {0x82260000, Record(16, battery), 48},                           //
        {0x82260004, Record(4, {{0, 0x98}, {1, 0x01}}), 12},             // read a register of the processor
        {0x82260008, Record(12, {{0, 0x9A}, {1, 0x01}}), 0},             // write one
        {0x8226000C, Named(Record(112, {{104, 4}}), 0), 4},              // read four bytes of a PCI function
        {0x82260010, Named(Record(113, {{100, 0x44}, {104, 2}}), 0), 0}, // write two
        {0x82260014, Record(12, {{1, 0x10}, {2, 2}, {4, 2}}), 2},        // read two bytes of a port
        {0x82260018, Record(12, {{0, 0xB2}, {2, 1}, {4, 1}}), 0},        // write one
        {0x8226001C, Record(16, {{1, 0xC0}, {2, 0xD1}, {3, 0xFE}, {8, 4}}), 16}, // map memory
        {0x82260020, Record(16, {}), 0},                                         // unmap it
        {0x82260024, Record(16, {{8, 4}}), 4},                                   // read four bytes of it
        {0x82260028, Record(19, {{8, 4}}), 0},                                   // write four
        {0x8226002C, Named(Record(104, {{0, 14}}), 4), 4, true}, // a property of a device object
    };
    const HANDLE driver = CreateFileW(L"\\\\.\\orvlebl", GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, driver);
    for (const Control& control : controls)
    {
        SCOPED_TRACE(control.code);
        const auto send = [&](std::size_t inputSize, DWORD outputSize)
        {
            std::vector<BYTE> input = control.input;
            input.resize(inputSize);
            BYTE output[64];
            DWORD returned = 0;
            return ErrorOf(DeviceIoControl(driver, control.code, input.data(), static_cast<DWORD>(inputSize),
                                           output, outputSize, &returned, nullptr));
        };
        const std::size_t size = control.input.size();
        EXPECT_NE(ERROR_INVALID_PARAMETER, send(size, control.outputSize));
        EXPECT_EQ(ERROR_INVALID_PARAMETER, send(size + 1, control.outputSize));
        EXPECT_EQ(ERROR_INVALID_PARAMETER, send(size - 1, control.outputSize));
        EXPECT_EQ(control.takesMoreOutput, send(size, control.outputSize + 1) != ERROR_INVALID_PARAMETER);
        if (control.outputSize != 0)
        {
            EXPECT_EQ(ERROR_INVALID_PARAMETER, send(size, control.outputSize - 1));
        }
    }
    DWORD returned = 0;
    EXPECT_EQ(ERROR_INVALID_FUNCTION,
              ErrorOf(DeviceIoControl(driver, 0x82260001, nullptr, 0, nullptr, 0, &returned, nullptr)));
    EXPECT_TRUE(CloseHandle(driver));
}

} // namespace
