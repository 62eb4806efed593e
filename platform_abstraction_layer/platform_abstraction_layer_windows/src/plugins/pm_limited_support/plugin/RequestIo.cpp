// plugin/RequestIo.cpp
//
// The host's buffers.

#include "plugin/RequestIo.h"

#include "foundation/Log.h"
#include "foundation/Text.h"

namespace request_io
{

bool IsLengthRight(const PM_Request& request, const CommandInfo& command) noexcept
{
    switch (command.payload.length)
    {
    case PayloadLength::Exact:
        return request.paramsLen == command.payload.size;
    case PayloadLength::AtLeast:
        return request.paramsLen >= command.payload.size;
    case PayloadLength::None:
    case PayloadLength::Unchecked:
        break;
    }
    return true;
}

bool HasRequiredPointers(const PM_Request& request, const CommandInfo& command) noexcept
{
    const bool readsPayload =
        command.payload.length != PayloadLength::None && IsLengthRight(request, command);
    if (readsPayload && request.params == nullptr)
    {
        return false;
    }
    return command.reply.kind != ReplyKind::Required ||
           (request.result != nullptr && request.resultLen != nullptr);
}

void WriteReply(const PM_Request& request, const void* data, DWORD size) noexcept
{
    if (request.result == nullptr || request.resultLen == nullptr)
    {
        return;
    }
    std::memcpy(request.result, data, size);
    WriteReplySize(request, size);
}

std::size_t ConvertText(const wchar_t* source, const wchar_t* format, char* target,
                        std::size_t capacity) noexcept
{
    const auto length = static_cast<int>(text::Length(source));
    PmLog(format, WideCharToMultiByte(CP_ACP, 0, source, length, nullptr, 0, nullptr, nullptr));
    return text::ToNarrow(source, target, capacity);
}

DWORD ReadReplySize(const PM_Request& request) noexcept
{
    DWORD size = 0;
    if (request.resultLen != nullptr)
    {
        std::memcpy(&size, request.resultLen, sizeof size);
    }
    return size;
}

void WriteReplySize(const PM_Request& request, DWORD size) noexcept
{
    if (request.resultLen != nullptr)
    {
        std::memcpy(request.resultLen, &size, sizeof size);
    }
}

} // namespace request_io
