// host/Payload.h
//
// Turns words of the command line into the bytes of a payload.
#pragma once

#include "RecordShapes.h"

#include <span>
#include <string>
#include <vector>

namespace host
{

struct Payload
{
    std::vector<std::byte> bytes;
    std::string error; ///< what is wrong with the words; empty when the bytes can be sent
};

/// Builds a record of `shape` from "field=value" words. A word without "=" is the value of the first field
/// that has none yet. Numbers may be given by the name of their value ("on").
Payload BuildPayload(const RecordShape& shape, std::span<const std::string> words);

} // namespace host
