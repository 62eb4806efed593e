// modules/drivers/DriverControls.h
//
// The kernel driver's I/O controls, one handler each. The device has checked the sizes that are fixed before
// it calls one; sizes that follow from the record are the handler's to check.
#pragma once

#include "modules/drivers/DriverRecords.h"

#include <winerror.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>

namespace simulated::orvlebl
{

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

/// The driver's answers, beside 0.
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
