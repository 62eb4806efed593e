// tests/acceptance/SampleRequests.h
//
// One request of each command that does all its work on a fresh notebook.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct SampleRequest
{
    std::string command;
    std::vector<std::byte> payload;
};

/// In an order in which each finds what it works on: what is added is edited, applied and deleted later.
/// `added` is the number that the next new scheme gets.
std::vector<SampleRequest> SampleRequests(int added);
