// modules/drivers/DriverControls.h
//
// The kernel driver's side of its protocol: codes, records as they come in and go out, and a handler for each
// I/O control. The device has checked the sizes that are fixed before it calls a handler; sizes that follow
// from the record are the handler's to check.
//
// All fields are little-endian. A record that carries data ends in one byte of it; its message is as long as
// the record without that byte, padding included, plus the data.
#pragma once

#include <winerror.h>
#include <winnt.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>

namespace simulated::orvlebl
{

constexpr DWORD kDeviceType = 0x8226;

constexpr DWORD ControlCode(DWORD function)
{
    return CTL_CODE(kDeviceType, function, METHOD_BUFFERED, FILE_ANY_ACCESS);
}

constexpr DWORD kEvaluateMethod = ControlCode(0);
constexpr DWORD kReadMsr = ControlCode(1);
constexpr DWORD kWriteMsr = ControlCode(2);
constexpr DWORD kReadPci = ControlCode(3);
constexpr DWORD kWritePci = ControlCode(4);
constexpr DWORD kReadPort = ControlCode(5);
constexpr DWORD kWritePort = ControlCode(6);
constexpr DWORD kMapMemory = ControlCode(7);
constexpr DWORD kUnmapMemory = ControlCode(8);
constexpr DWORD kReadMemory = ControlCode(9);
constexpr DWORD kWriteMemory = ControlCode(10);
constexpr DWORD kGetProperty = ControlCode(11);
static_assert(kEvaluateMethod == 0x82260000 && kGetProperty == 0x8226002C);

constexpr std::size_t kNameUnits = 50;

struct MethodInput
{
    char name[4];      ///< offset 0
    DWORD argument[3]; ///< offset 4
};
static_assert(sizeof(MethodInput) == 16);

struct Msr
{
    DWORD index; ///< offset 0
    DWORD high;  ///< offset 4
    DWORD low;   ///< offset 8
};
static_assert(sizeof(Msr) == 12);

struct PciAccess
{
    wchar_t name[kNameUnits]; ///< offset 0: device object, terminated
    DWORD offset;             ///< offset 100
    DWORD length;             ///< offset 104
    BYTE data[1];             ///< offset 108
};
static_assert(sizeof(PciAccess) == 112 && offsetof(PciAccess, data) == 108);

struct PortAccess
{
    WORD port;      ///< offset 0
    WORD size;      ///< offset 2
    DWORD sizeWide; ///< offset 4
    BYTE data[1];   ///< offset 8
};
static_assert(sizeof(PortAccess) == 12 && offsetof(PortAccess, data) == 8);

struct MapInput
{
    DWORD addressLow;  ///< offset 0
    DWORD addressHigh; ///< offset 4
    DWORD length;      ///< offset 8
    DWORD reserved;    ///< offset 12: 0
};
static_assert(sizeof(MapInput) == 16);

struct Mapping
{
    DWORD address[2]; ///< offset 0
    DWORD length;     ///< offset 8
    DWORD reserved;   ///< offset 12: 0
};
static_assert(sizeof(Mapping) == 16);

struct MemoryAccess
{
    DWORD address[2]; ///< offset 0: of the mapping
    DWORD length;     ///< offset 8
    BYTE data[1];     ///< offset 12
};
static_assert(sizeof(MemoryAccess) == 16 && offsetof(MemoryAccess, data) == 12);

struct PropertyQuery
{
    DWORD property;           ///< offset 0
    wchar_t name[kNameUnits]; ///< offset 4: device object, terminated
};
static_assert(sizeof(PropertyQuery) == 104);

/// A request inside the driver.
struct Exchange
{
    std::span<const BYTE> in;
    std::span<BYTE> out;
    DWORD returned = 0;
    bool isObserved = false; ///< the plug-in opened the device

    /// The record that the input begins with, bytes beyond the input's end being zeros.
    template <class Record>
    Record Input() const
    {
        Record record = {};
        std::memcpy(&record, in.data(), std::min(in.size(), sizeof record));
        return record;
    }

    /// The data bytes of a message that carries `length` of them behind a record's head, or nothing when
    /// the message has another length.
    template <class Record>
    std::optional<std::span<const BYTE>> Data(DWORD length) const
    {
        const std::size_t head = sizeof(Record) - 1;
        if (length == 0 || in.size() < head || in.size() - head != length)
        {
            return std::nullopt;
        }
        return in.subspan(offsetof(Record, data), length);
    }

    /// Sends `record` back; the output has room for it.
    template <class Record>
    void Answer(const Record& record)
    {
        std::memcpy(out.data(), &record, sizeof record);
        returned = sizeof record;
    }
};

/// The driver's results, besides 0.
constexpr DWORD kUnknownControl = ERROR_INVALID_FUNCTION;
constexpr DWORD kWrongSize = ERROR_INVALID_PARAMETER;
constexpr DWORD kNoSuchThing = ERROR_FILE_NOT_FOUND; ///< method, item, register, port, memory or object

DWORD EvaluateMethod(Exchange& exchange);
DWORD ReadMsr(Exchange& exchange);
DWORD WriteMsr(Exchange& exchange);
DWORD ReadPci(Exchange& exchange);
DWORD WritePci(Exchange& exchange);
DWORD ReadPort(Exchange& exchange);
DWORD WritePort(Exchange& exchange);
DWORD MapMemory(Exchange& exchange);
DWORD UnmapMemory(Exchange& exchange);
DWORD ReadMemory(Exchange& exchange);
DWORD WriteMemory(Exchange& exchange);
DWORD GetProperty(Exchange& exchange);

} // namespace simulated::orvlebl
