// fuzz/Machine.h
//
// The machine under a fuzz target: a notebook with an installation, users' schemes and a running plug-in, the
// same one at the beginning of each input.
#pragma once

#include "control/Snapshot.h"

#include <windef.h>

#include <span>
#include <string>
#include <vector>

namespace fuzz
{

class Machine
{
public:
    /// The notebook of major version 5 or 6 as it was made, with the plug-in just initialised.
    static Machine& Fresh(DWORD major);

    /// Stops the plug-in and aborts when it still holds anything of the system's.
    static void Finish();

    /// Sends a request from buffers of exactly its sizes and aborts when its result code is none of the four
    /// or the reply is longer than the room. A null span has no buffer.
    static LONG Send(const char* command, const char* user, std::span<const std::byte> payload,
                     std::size_t room = 1024);

    /// Sends the sample of that number, whatever the number, or the first one of a command; nothing for an
    /// unknown command.
    static void SendSample(unsigned number);
    static void SendSample(const std::string& command);

private:
    explicit Machine(DWORD major);

    std::string m_folder;
    simulated::Snapshot m_snapshot;
};

/// A fault that a target has found: says what is wrong and aborts.
[[noreturn]] void Fail(const std::string& what);

/// Fails when a request's result code is none of the four, or its reply longer than the room was.
void CheckResult(const char* command, LONG code, DWORD size, std::size_t room);

/// The payload of a sample request.
const std::vector<std::byte>& SamplePayload(unsigned number);

} // namespace fuzz
