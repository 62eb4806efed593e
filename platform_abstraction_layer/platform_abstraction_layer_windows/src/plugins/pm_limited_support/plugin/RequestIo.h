// plugin/RequestIo.h
//
// The host's two buffers, as the handlers use them: checks against what a command wants, and the copies in
// and out. Host buffers may lie at any address.
#pragma once

#include "plugin/Commands.h"
#include "plugin/HostRecords.h"

#include <cstring>

namespace request_io
{

/// True when `paramsLen` is as the command wants it.
[[nodiscard]] bool IsLengthRight(const PM_Request& request, const CommandInfo& command) noexcept;

/// True when every pointer that the command will use is there: the payload's when its length is right, both
/// of a required reply.
[[nodiscard]] bool HasRequiredPointers(const PM_Request& request, const CommandInfo& command) noexcept;

/// The payload as a record; its length and pointer have been checked.
template <class Record>
Record ReadPayload(const PM_Request& request) noexcept
{
    Record record;
    std::memcpy(&record, request.params, sizeof record);
    return record;
}

/// Writes `size` bytes as the reply and their number into `resultLen`; nothing when a pointer is null.
void WriteReply(const PM_Request& request, const void* data, DWORD size) noexcept;

template <class Record>
void WriteReply(const PM_Request& request, const Record& record) noexcept
{
    WriteReply(request, &record, sizeof record);
}

/// Converts a text for a reply, as far as `capacity` goes with the terminator, and logs under `format` how
/// many bytes it needs without. Gives the bytes written before the terminator.
std::size_t ConvertText(const wchar_t* source, const wchar_t* format, char* target,
                        std::size_t capacity) noexcept;

/// The capacity that the host gives, and the size that it gets back; 0 and nothing for a null pointer.
DWORD ReadReplySize(const PM_Request& request) noexcept;
void WriteReplySize(const PM_Request& request, DWORD size) noexcept;

} // namespace request_io
