// agents/DriverCall.h
//
// One request to the driver, sized by the table of its I/O controls.
#pragma once

#include "agents/DriverRecords.h"

/// Sends `function` over the channel and gives its result code. `dataLength` is the number of data bytes in
/// the message that carries data, input or output; `output` is null where the control has none. `returned`
/// gets the number of bytes that the driver gave.
[[nodiscard]] LONG CallDriver(DriverFunction function, const void* input, void* output, DWORD dataLength,
                              DWORD& returned) noexcept;

/// The same for a caller that doesn't need the number of bytes.
[[nodiscard]] LONG CallDriver(DriverFunction function, const void* input, void* output,
                              DWORD dataLength) noexcept;

/// How an agent sets up and cleans up: it opens the channel once and closes what it has opened. 0, 1 when it
/// is open, or the translated error, with a line in the log.
[[nodiscard]] LONG OpenChannel(bool& isSetUp) noexcept;
void CloseChannel(bool& isSetUp) noexcept;

/// Reads a model-specific register.
[[nodiscard]] LONG ReadMsrRecord(ULONG index, MsrRecord& record) noexcept;

/// Writes the register that the record names, on the core that the caller runs on.
[[nodiscard]] LONG WriteMsrRecord(const MsrRecord& record) noexcept;
