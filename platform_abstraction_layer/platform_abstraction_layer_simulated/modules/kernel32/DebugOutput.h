// modules/kernel32/DebugOutput.h
//
// What was sent to the debugger channel. `SIM_DEBUG_OUTPUT=1` in the environment shows it on standard error
// too.
#pragma once

#include <string>
#include <vector>

namespace simulated
{

class DebugOutput
{
public:
    /// The texts since the last `Clear`, in UTF-8, the newest last. Only the latest thousand are kept.
    static std::vector<std::string> Texts();
    static void Clear();

    /// Adds a text.
    static void Send(const std::string& text);
};

} // namespace simulated
