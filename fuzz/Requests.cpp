// fuzz/Requests.cpp
//
// Sequences of requests, good and bad ones, on one notebook. An input is a byte for the generation of Windows
// (even: 5.1) and then for each request: the number of a sample, or from 200 on of an unknown command; the
// user; what is wrong with the request, as bits; the number of patches, and for each of them an offset into
// the payload and four bytes.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "plugin/Commands.h"
#include "plugin/PluginExports.h"
#include "transcripts/Samples.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{

constexpr const char* kUnknownCommands[] = {"", "GET_CPU_SPEEDS", "get_cpu_speed",
                                            "A_NAME_OF_THIRTY_TWO_CHARACTERS_"};
constexpr unsigned kFirstUnknown = 200;

// A name longer than any, and one of characters that aren't ASCII.
const std::string kLongName(2000, 'x');
const char* const kUsers[] = {"alice", "bob", "carol", "nobody", "", "SYSTEM", "J\xF6rg", "\xFF\xFE\x80"};
constexpr unsigned kNoUser = 100;
constexpr unsigned kLongUser = 101;

enum Wrong : unsigned
{
    NoPayload = 1,
    ShortPayload = 2,
    LongPayload = 4,
    NoReply = 8,
    NoReplySize = 16,
    SmallRoom = 32,
    OddAddress = 64
};

constexpr int kMostRequests = 6;

const char* TakeUser(fuzz::Input& input)
{
    const unsigned user = input.Byte();
    return user == kNoUser     ? nullptr
           : user == kLongUser ? kLongName.c_str()
                               : kUsers[user % std::size(kUsers)];
}

const CommandInfo* InfoOf(std::string_view command)
{
    const auto* const found = std::find_if(std::begin(commands::kAll), std::end(commands::kAll),
                                           [&](const CommandInfo& info) { return info.name == command; });
    return found == std::end(commands::kAll) ? nullptr : found;
}

void SendOne(fuzz::Input& input)
{
    const unsigned number = input.Byte();
    const char* const command = number >= kFirstUnknown
                                    ? kUnknownCommands[number % std::size(kUnknownCommands)]
                                    : Samples()[number % Samples().size()].command;
    const char* const user = TakeUser(input);
    const unsigned wrong = input.Byte();
    std::vector<std::byte> payload = fuzz::SamplePayload(number);
    for (unsigned patches = input.Byte() % 4; patches > 0; --patches)
    {
        const std::size_t offset = input.Number<std::uint16_t>();
        const auto word = input.Number<std::uint32_t>();
        if (!payload.empty())
        {
            const std::size_t place = offset % payload.size();
            std::memcpy(payload.data() + place, &word, std::min(sizeof word, payload.size() - place));
        }
    }
    if ((wrong & ShortPayload) != 0 && !payload.empty())
    {
        payload.pop_back();
    }
    if ((wrong & LongPayload) != 0)
    {
        payload.resize(payload.size() + 5);
    }

    // Blocks of exactly the sizes that a host must give, so that the sanitizer sees a byte too far: the whole
    // record where the payload's length isn't looked at, and always the reply's.
    const CommandInfo* const info = InfoOf(command);
    const bool isUnchecked = info != nullptr && info->payload.length == PayloadLength::Unchecked;
    const std::size_t least = isUnchecked ? info->payload.size : 0;
    const std::size_t room = info == nullptr ? 0 : info->reply.size;
    const std::size_t shift = (wrong & OddAddress) != 0 ? 1 : 0;
    const auto params = std::make_unique<std::byte[]>(std::max(payload.size(), least) + shift);
    const auto result = std::make_unique<std::byte[]>(room + shift);
    std::copy(payload.begin(), payload.end(), params.get() + shift);
    auto size = static_cast<DWORD>((wrong & SmallRoom) != 0 ? room / 2 : room);
    PM_Request request = {};
    std::memcpy(request.command, command, std::min(std::strlen(command), sizeof request.command));
    request.userId = user;
    request.params = (wrong & NoPayload) != 0 ? nullptr : params.get() + shift;
    request.paramsLen = static_cast<DWORD>(payload.size());
    request.result = (wrong & NoReply) != 0 ? nullptr : result.get() + shift;
    request.resultLen = (wrong & NoReplySize) != 0 ? nullptr : &size;
    fuzz::CheckResult(command, DP_HandleRequest(&request), size, room);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    fuzz::Machine::Fresh(input.Byte() % 2 == 0 ? 5 : 6);
    for (int request = 0; request < kMostRequests && !input.IsEmpty(); ++request)
    {
        SendOne(input);
    }
    fuzz::Machine::Finish();
    return 0;
}
