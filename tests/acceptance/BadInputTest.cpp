// tests/acceptance/BadInputTest.cpp
//
// Every command with input that no honest host sends: wrong lengths, null pointers, random bytes in every
// field, texts without an end. The result is the documented one and no byte beside the buffers is touched.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/CommandShapes.h"
#include "acceptance/GuardedBytes.h"

#include <random>

namespace
{

constexpr unsigned kSeed = 20081117;
constexpr int kRounds = 12;

std::vector<std::byte> Zeros(std::size_t size)
{
    return std::vector<std::byte>(size);
}

class BadInput : public GenerationTest
{
protected:
    void SetUp() override
    {
        GenerationTest::SetUp();
        host->Uninitialize(); // the calls of its thread aren't a request's
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, BadInput, testing::ValuesIn(environment::Generations()));

TEST_P(BadInput, WrongLengthsFail)
{
    for (const CommandShape& shape : kCommandShapes)
    {
        std::vector<std::size_t> wrong;
        if (shape.takes == Takes::Exactly)
        {
            wrong = {0, 1, shape.payload - 1, shape.payload + 1, shape.payload * 2};
        }
        else if (shape.takes == Takes::AtLeast)
        {
            wrong = {0, 1, 2, 3};
        }
        for (const std::size_t size : wrong)
        {
            const Answer answer = host->Send(shape.name, Zeros(size));
            EXPECT_EQ(6, answer.code) << shape.name << ' ' << size;
            EXPECT_FALSE(answer.reply.has_value()) << shape.name << ' ' << size;
        }
    }
}

TEST_P(BadInput, NullPointersFailBeforeAnythingIsDone)
{
    for (const CommandShape& shape : kCommandShapes)
    {
        std::vector<std::byte> payload = Zeros(shape.payload);
        std::vector<std::byte> reply(1024);
        auto size = static_cast<DWORD>(reply.size());
        PM_Request whole{};
        std::memcpy(whole.command, shape.name, std::strlen(shape.name));
        whole.userId = host->user.c_str();
        whole.params = payload.data();
        whole.paramsLen = static_cast<DWORD>(payload.size());
        whole.result = reply.data();
        whole.resultLen = &size;

        std::vector<PM_Request> requests;
        if (shape.takes != Takes::Nothing)
        {
            requests.push_back(whole);
            requests.back().params = nullptr;
        }
        if (shape.gives == Gives::Reply)
        {
            requests.push_back(whole);
            requests.back().result = nullptr;
            requests.push_back(whole);
            requests.back().resultLen = nullptr;
        }
        if (shape.forUser)
        {
            requests.push_back(whole);
            requests.back().userId = nullptr;
        }
        for (PM_Request& request : requests)
        {
            environment::ForgetCalls();
            EXPECT_EQ(6, host->Send(&request)) << shape.name;
            EXPECT_EQ(reply.size(), size) << shape.name;
            EXPECT_TRUE(environment::HasOnlyLogged())
                << shape.name << " asked more of the platform than a log line";
        }
    }
}

TEST_P(BadInput, AnAccountNameIsBounded)
{
    struct Case
    {
        std::string user;
        LONG code;
    };
    const Case kCases[] = {
        {environment::UserName(), 0},
        {"", 6},
        {"nobody", 6},
        {std::string(255, 'u'), 6},
        {std::string(256, 'u'), 6},
        {std::string(5000, 'u'), 6},
    };
    for (const Case& row : kCases)
    {
        host->user = row.user;
        EXPECT_EQ(row.code, host->Send("INIT_CFG_FILE").code) << row.user.size();
    }
}

// Random bytes find what tables forget. The seed is fixed, so a failure comes again.
TEST_P(BadInput, RandomBytesNeverLeaveTheBuffers)
{
    std::mt19937 random(kSeed);
    const auto upTo = [&](unsigned limit)
    { return std::uniform_int_distribution<unsigned>(0, limit)(random); };
    for (const CommandShape& shape : kCommandShapes)
    {
        SCOPED_TRACE(shape.name);
        host->room = std::max<std::size_t>(shape.reply, 4) + 1; // so that a full reply shows as one
        for (int round = 0; round < kRounds; ++round)
        {
            std::vector<std::byte> payload(shape.payload);
            const unsigned kind = upTo(3);
            for (std::byte& byte : payload)
            {
                // All bytes, printable ones without an end, or small numbers.
                byte = static_cast<std::byte>(kind == 0 ? upTo(255) : kind == 1 ? 'A' + upTo(25) : upTo(3));
            }
            host->user = upTo(3) == 0 ? std::string(upTo(300), static_cast<char>(1 + upTo(254)))
                                      : environment::UserName();
            const LONG code = host->Send(shape.name, payload).code;
            EXPECT_TRUE(code == 0 || code == 1 || code == 6 ||
                        std::string(shape.name) == "POST_DOWN_INTERFACE")
                << code;
        }
    }
}

} // namespace
