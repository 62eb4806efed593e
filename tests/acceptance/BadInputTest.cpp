// tests/acceptance/BadInputTest.cpp
//
// Every command with malformed input: other names, wrong lengths, null pointers, random bytes
// in every field, texts without an end. The result is the documented one and no byte beside the buffers is
// touched.

#include "CommandCatalogue.h"
#include "acceptance/AcceptanceTest.h"
#include "acceptance/GuardedBytes.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

namespace
{

constexpr unsigned kSeed = 20081117;
constexpr int kRounds = 12;
constexpr std::size_t kNumber = 4;

// The length of these isn't checked; the host always gives the whole record.
const std::set<std::string> kOfAnyLength = {"CLEAR_SCHEMES", "AUTORUN_ORVA", "SET_LUMS_LEVEL"};

// The reply of these is left out where there is no room for it.
const std::set<std::string> kReplyIfWanted = {"EDIT_SCHEME", "EDIT_SCHEME_ALL", "DELETE_SCHEME",
                                              "APPLY_SCHEME"};

class BadInput : public GenerationTest
{
protected:
    void SetUp() override
    {
        GenerationTest::SetUp();
        host->Uninitialize(); // the calls of its thread aren't a request's
    }

    static PM_Request Named(const std::string& name)
    {
        PM_Request request{};
        std::memcpy(request.command, name.data(), std::min(name.size(), sizeof request.command));
        return request;
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, BadInput, testing::ValuesIn(environment::Generations()));

TEST_P(BadInput, NamesCountUpToTheirEnd)
{
    const std::pair<std::string, LONG> rows[] = {
        {"", 5},
        {"get_lums_level", 5},
        {"GET_LUMS_LEVE", 5},
        {"GET_LUMS_LEVEL ", 5},
        {"POST_DOWN_INTERFACE", 5},
        {std::string(32, 'A'), 5},
        {"GET_LUMS_LEVELGET_LUMS_LEVELGET_", 5},
        {std::string("\0GET_LUMS_LEVEL", 15), 5},
        {std::string("GET_LUMS_LEVEL\0garbage garbage", 30), 1},
        {"SET_LUMS_LEVEL", 1},
    };
    for (const auto& [name, code] : rows)
    {
        const PM_Request request = Named(name);
        GuardedBytes atOddAddress(Payload(request));
        EXPECT_EQ(code, host->Send(reinterpret_cast<PM_Request*>(atOddAddress.Data()))) << name;
    }
    EXPECT_EQ(6, host->Send(nullptr));
}

TEST_P(BadInput, WrongLengthsFail)
{
    const std::pair<std::string, const char*> said[] = {
        {"APPLY_SCHEME", "result = TRX_OPERATION_FAIL"},
        {"EDIT_SCHEME_ALL", "the len check failed in  PM_EDIT_SCHEME_ALL"},
        {"ADD_SCHEME_ALL", "the len check failed in  PM_ADD_SCHEME_ALL"},
        {"QUERY_SCHEME", "pRequest->paramsLen != sizeof(PM_Variable_Data)"},
    };
    seeding::SwitchLogsOn();
    for (const host::CommandEntry& command : host::Commands())
    {
        const std::size_t whole = command.payload.size;
        std::vector<std::size_t> wrong;
        if (whole != 0 && !kOfAnyLength.contains(command.info.name))
        {
            wrong = {0, 1, 3};
        }
        if (whole > kNumber && !wrong.empty())
        {
            wrong.insert(wrong.end(), {whole - 1, whole + 1, whole * 2});
        }
        for (const std::size_t size : wrong)
        {
            const Answer answer = host->Send(command.info.name, std::vector<std::byte>(size));
            EXPECT_EQ(6, answer.code) << command.info.name << ' ' << size;
            EXPECT_FALSE(answer.reply.has_value()) << command.info.name << ' ' << size;
        }
        for (const auto& [name, line] : said)
        {
            std::vector<std::string> lines = seeding::LogLines("trxpm.log");
            std::erase(lines, "");
            EXPECT_TRUE(name != command.info.name || lines.back() == line) << name << lines.back();
        }
    }
}

TEST_P(BadInput, NullPointersFailBeforeAnythingIsDone)
{
    for (const host::CommandEntry& command : host::Commands())
    {
        std::vector<std::byte> payload(command.payload.size);
        std::vector<std::byte> reply(1024);
        auto size = static_cast<DWORD>(reply.size());
        PM_Request whole = Named(command.info.name);
        whole.userId = host->user.c_str();
        whole.params = payload.data();
        whole.paramsLen = static_cast<DWORD>(payload.size());
        whole.result = reply.data();
        whole.resultLen = &size;

        std::vector<PM_Request> requests;
        if (!payload.empty() && std::strcmp(command.info.name, "SET_LUMS_LEVEL") != 0)
        {
            requests.push_back(whole);
            requests.back().params = nullptr;
        }
        const bool replies = command.reply.size != 0 || &command.reply == &host::kTextReply;
        if (replies && !kReplyIfWanted.contains(command.info.name))
        {
            requests.insert(requests.end(), {whole, whole});
            requests.end()[-1].result = nullptr;
            requests.end()[-2].resultLen = nullptr;
        }
        if (command.info.needsUser)
        {
            requests.push_back(whole);
            requests.back().userId = nullptr;
        }
        for (PM_Request& request : requests)
        {
            environment::ForgetCalls();
            EXPECT_EQ(6, host->Send(&request)) << command.info.name;
            EXPECT_EQ(reply.size(), size) << command.info.name;
            EXPECT_TRUE(environment::HasOnlyLogged())
                << command.info.name << " asked more of the platform than a log line";
        }
    }
}

// Random bytes find what tables miss. The seed is fixed, so failures are repeatable.
TEST_P(BadInput, RandomBytesNeverLeaveTheBuffers)
{
    std::mt19937 random(kSeed);
    const auto upTo = [&](unsigned limit)
    { return std::uniform_int_distribution<unsigned>(0, limit)(random); };
    for (const host::CommandEntry& command : host::Commands())
    {
        SCOPED_TRACE(command.info.name);
        // So that a full reply can be recognised.
        host->room = &command.reply == &host::kTextReply ? 1025 : std::max(command.reply.size, kNumber) + 1;
        for (int round = 0; round < kRounds; ++round)
        {
            std::vector<std::byte> payload(command.payload.size);
            const unsigned kind = upTo(3);
            for (std::byte& byte : payload)
            {
                // All bytes, printable ones without an end, or small numbers.
                byte = static_cast<std::byte>(kind == 0 ? upTo(255) : kind == 1 ? 'A' + upTo(25) : upTo(3));
            }
            host->user = upTo(3) == 0 ? std::string(upTo(300), static_cast<char>(1 + upTo(254)))
                                      : environment::UserName();
            const LONG code = host->Send(command.info.name, payload).code;
            EXPECT_TRUE(code == 0 || code == 1 || code == 6 ||
                        std::string(command.info.name) == "POST_DOWN_INTERFACE")
                << code;
        }
    }
}

} // namespace
