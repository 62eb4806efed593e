// agents/DspxAgentTest.cpp
//
// The level word against the three policies, and the driver's refusals.

#include "agents/AgentsTest.h"

#include "agents/DspxAgent.h"
#include "foundation/Results.h"
#include "machine/Graphics.h"

using namespace simulated;

namespace
{

using Words = std::vector<DWORD>;

constexpr const char* kNames[] = {"FRQG", "ABR", "LUMS"};

/// The records of the three policies as the driver holds them.
using Policies = std::vector<Words>;
const Policies kNone = {{0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}};

class DspxAgentTest : public AgentsTest
{
protected:
    static void UsePolicies(const Policies& policies)
    {
        for (std::size_t index = 0; index < policies.size(); ++index)
        {
            Graphics::SetPolicy(kNames[index], policies[index]);
        }
    }
    static Policies Present()
    {
        return {*Graphics::Policy("FRQG"), *Graphics::Policy("ABR"), *Graphics::Policy("LUMS")};
    }
};

TEST_F(DspxAgentTest, WordStandsForTheThreePolicies)
{
    const std::pair<Policies, int> cases[] = {
        {{{1}, {0, 0, 0, 0, 0}, {1, 0, 0, 2, 0}}, 0x44000002},
        {{{0}, {1, 0, 0, 0, 0}, {0, 0, 0, 0, 0}}, 0x10000000},
        {{{0}, {0, 1, 0, 0, 0}, {1, 0, 0, 0xFFFFF, 0}}, 0x240FFFFF},
        {kNone, 0},
    };
    CDspxAgent agent;
    ASSERT_EQ(kSucceeded, agent.Setup());
    for (const auto& [policies, word] : cases)
    {
        UsePolicies(policies);
        EXPECT_EQ(word, agent.GetEblLevel());
        UsePolicies({{7}, {7, 7, 7, 7, 7}, {7, 7, 7, 7, 7}});
        // Unused bits are returned and change nothing.
        EXPECT_EQ(word | 0x0BF00000, agent.SetEblLevel(word | 0x0BF00000));
        EXPECT_EQ(policies, Present());
    }
    // A level counts only while the feature is on, and only by its twenty bits.
    UsePolicies({{2}, {0, 0, 0, 0, 0}, {0, 0, 0, 5, 0}});
    EXPECT_EQ(0x40000000, agent.GetEblLevel());
    UsePolicies({{0}, {0, 0, 0, 0, 0}, {1, 0, 0, 0xFFF00001, 0}});
    EXPECT_EQ(0x04000001, agent.GetEblLevel());
    EXPECT_EQ(3, agent.SetEblLevel(3));
    EXPECT_EQ(0U, Present()[2][0]) << "the level's bits are none of the feature's";
    NewLogLines();
    EXPECT_EQ(-1, agent.SetEblLevel(-1));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Wrong level!"));
}

TEST_F(DspxAgentTest, FeatureThatTheDriverLacksIsSkippedAndOtherFailuresEndTheLoop)
{
    // A copy has the same driver interface and handle, but initialises COM for itself.
    CDspxAgent first;
    ASSERT_EQ(kSucceeded, first.Setup());
    CDspxAgent copy(first);
    CDspxAgent agent;
    agent = copy;
    first = copy = CDspxAgent();
    EXPECT_EQ(4U, Calls("CoInitializeEx"));
    for (const auto& [policy, word] :
         {std::pair{"ABR", 0x44000009}, {"FRQG", 0x34000009}, {"LUMS", 0x70000000}})
    {
        UsePolicies({{1}, {1, 1, 0, 0, 0}, {1, 0, 0, 9, 0}});
        Graphics::RemovePolicy(policy);
        NewLogLines();
        EXPECT_EQ(word, agent.GetEblLevel());
        EXPECT_EQ(0, agent.SetEblLevel(0));
        EXPECT_EQ(0, agent.GetEblLevel()) << "the others are set";
        const std::string line = std::string("Unsupported power policy ") + policy + '!';
        EXPECT_THAT(NewLogLines(), testing::ElementsAre(line, line, line));
    }
    // The driver's own error counts beside the result of the call.
    UsePolicies(kNone);
    Graphics::Refuse("GetPowerPolicy.ABR", {0, 7});
    Graphics::Refuse("SetPowerPolicy.ABR", {0, 7});
    EXPECT_EQ(-1, agent.GetEblLevel());
    EXPECT_EQ(-1, agent.SetEblLevel(0x74000001));
    EXPECT_EQ((Policies{{1}, kNone[1], kNone[2]}), Present());
    Graphics::Refuse("GetPowerConsCaps", {0, 7});
    EXPECT_EQ(0U, agent.CheckSupportStatus());
    Graphics::Refuse("PowerApiClose", {0, 7});
    NewLogLines();
    EXPECT_EQ(kSucceeded, agent.Cleanup());
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Close Power handle failed with 0"));
    Leaks::Forget(); // the driver has kept the handle that it refused to close
}

TEST_F(DspxAgentTest, RefusedPowerInterfaceIsReleased)
{
    CDspxAgent agent;
    for (const auto& [refusal, result, line] :
         {std::tuple{Graphics::Refusal{0, 19}, kNotSupported, "PowerAPI Not Supported.19"},
          {Graphics::Refusal{0, 20}, kAccessRefused, "PowerAPI Locked.20"},
          {Graphics::Refusal{E_FAIL, 20}, kAccessRefused, "PowerAPI Locked.20"},
          {Graphics::Refusal{E_FAIL, 0}, kGeneralFailure, "PowerApiOpen() failed.0"}})
    {
        Graphics::Refuse("PowerApiOpen", refusal);
        EXPECT_EQ(result, agent.Setup());
        EXPECT_EQ(-1, agent.GetEblLevel());
        EXPECT_EQ(0U, agent.CheckSupportStatus());
        EXPECT_EQ(kSucceeded, agent.Cleanup());
        EXPECT_THAT(NewLogLines(), testing::ElementsAre(line, "call setup first."));
        EXPECT_EQ(0U, Graphics::LiveObjects());
    }
    Graphics::SetInstalled(false);
    EXPECT_EQ(CO_E_CLASSSTRING, agent.Setup());
}

} // namespace
