// tests/transcripts/Golden.h
//
// Golden files, and the rows of failing calls in them.
#pragma once

#include "base/Trace.h"

#include <map>
#include <string>
#include <vector>

/// Compares `text` with a golden file, line by line; a test fails at the first line that differs. With
/// UPDATE_TRANSCRIPTS in the environment the file is written instead.
void CompareWithGolden(const std::string& file, const std::string& text);

/// True for a log's own calls, whose failure shows in the log alone.
bool IsOfLog(const std::vector<simulated::TracedCall>& calls, std::size_t index);

/// The calls that have the same effect when they fail, and the effect.
class FailureRows
{
public:
    void Add(const std::string& call, const std::string& effect);

    /// Calls without an effect have no row.
    std::string Text() const;

private:
    std::map<std::string, std::string> m_callsOfEffects;
};
