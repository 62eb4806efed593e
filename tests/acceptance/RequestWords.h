// tests/acceptance/RequestWords.h
//
// Requests and answers in the words of trxhost: "field=value" for each field of a record. Which fields there
// are comes from the host's own tables, not the plug-in's.
#pragma once

#include "acceptance/Host.h"

#include <string>
#include <vector>

/// The payload of `command` that `fields` describe; a test fails when they describe none.
std::vector<std::byte> PayloadOf(const std::string& command, const std::string& fields);

/// The fields of a reply, the text in quotes, or the bytes where `command` has no such reply.
std::string ReplyInWords(const std::string& command, const std::vector<std::byte>& reply);

/// Sends a request. The result code, the reply where there is one, and the events: "0 speed=1", "6",
/// "0, LAN_CHANGED 4".
std::string Ask(Host& host, const std::string& command, const std::string& fields = "");

/// An answer as `Ask` shows it, with the events until now.
std::string InWords(Host& host, const std::string& command, const Answer& answer);
