// control/State.h
//
// What a notebook holds, as flat entries that can be compared: keys of configuration files, values of the
// registry, lines of machine.ini.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace simulated
{

/// Locations such as "PowerSchemes.ini [Scheme 7] Wifi" and their values.
using State = std::map<std::string, std::string>;

/// The present state of this process's notebook.
State Observe();

/// A line for each entry that differs: "location: before -> after", "+ location: after", "- location". Of
/// binary values the 32-bit words that differ.
std::vector<std::string> Differences(const State& before, const State& after);

} // namespace simulated
