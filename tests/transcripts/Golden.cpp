// tests/transcripts/Golden.cpp
//
// Comparing lines with those of golden files.

#include "transcripts/Golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

using simulated::CallClass;
using simulated::TracedCall;

namespace
{

// Beyond that a row takes two lines.
constexpr std::size_t kLongestRow = 160;

} // namespace

void CompareWithGolden(const std::string& file, const std::string& text)
{
    const std::string path = std::string(GOLDEN_FOLDER) + '/' + file;
    if (std::getenv("UPDATE_TRANSCRIPTS") != nullptr)
    {
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    std::ifstream golden(path, std::ios::binary);
    EXPECT_TRUE(golden.is_open()) << "no golden file; ./test --update-transcripts makes it";
    std::istringstream present(text);
    std::string wanted;
    std::string found;
    for (int number = 1;; ++number)
    {
        const bool more = static_cast<bool>(std::getline(golden, wanted));
        if (static_cast<bool>(std::getline(present, found)) != more || (more && wanted != found))
        {
            ADD_FAILURE() << file << ':' << number << "\n  golden:  " << (more ? wanted : "(its end)")
                          << "\n  present: " << found
                          << "\n./test --update-transcripts takes the present over";
            return;
        }
        if (!more)
        {
            return;
        }
    }
}

bool IsOfLog(const std::vector<TracedCall>& calls, std::size_t index)
{
    const auto isLog = [&](std::size_t which) { return calls[which].callClass == CallClass::Log; };
    // A line is converted right after its file has been opened.
    return isLog(index) || (index > 0 && calls[index].function == "WideCharToMultiByte" && isLog(index - 1));
}

void FailureRows::Add(const std::string& call, const std::string& effect)
{
    if (!effect.empty())
    {
        std::string& calls = m_callsOfEffects[effect];
        calls += (calls.empty() ? "" : ", ") + call;
    }
}

std::string FailureRows::Text() const
{
    std::string text;
    for (const auto& [effect, calls] : m_callsOfEffects)
    {
        const bool isShort = calls.size() + effect.size() < kLongestRow;
        text += calls + (isShort ? ": " : "\n  ") + effect + '\n';
    }
    return text;
}
