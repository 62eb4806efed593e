// tests/acceptance/CommandNamesTest.cpp
//
// How a command is told by its name, and the record that brings it.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/GuardedBytes.h"

namespace
{

class CommandNames : public AcceptanceTest
{
protected:
    // A name as the bytes of its field, whatever stands behind its end.
    LONG SendName(const std::string& field)
    {
        PM_Request request{};
        std::memcpy(request.command, field.data(), std::min(field.size(), sizeof request.command));
        return host.Send(&request);
    }

    Host host;
};

TEST_F(CommandNames, UnknownOnesAnswerFive)
{
    const std::string kNames[] = {
        "",
        "get_lums_level",
        "GET_LUMS_LEVE",
        "GET_LUMS_LEVEL ",
        "POST_DOWN_INTERFACE",
        std::string(32, 'A'),
        "GET_LUMS_LEVELGET_LUMS_LEVELGET_",
        std::string("\0GET_LUMS_LEVEL", 15),
    };
    for (const std::string& name : kNames)
    {
        EXPECT_EQ(TRX_UNKNOWN_COMMAND, SendName(name)) << name;
    }
}

TEST_F(CommandNames, BytesBehindTheEndDontCount)
{
    EXPECT_EQ(TRX_OPERATION_REFUSED, SendName(std::string("GET_LUMS_LEVEL\0garbage garbage", 30)));
    EXPECT_EQ(TRX_OPERATION_REFUSED, host.Send("SET_LUMS_LEVEL").code);
    EXPECT_FALSE(host.Send("GET_LUMS_LEVEL").reply.has_value());
}

TEST_F(CommandNames, ARequestMayLieAtAnyAddress)
{
    PM_Request request{};
    std::memcpy(request.command, "GET_LUMS_LEVEL", 14);
    GuardedBytes record(Payload(request));
    EXPECT_EQ(TRX_OPERATION_FAIL, host.Send(nullptr));
    EXPECT_EQ(TRX_OPERATION_REFUSED, host.Send(reinterpret_cast<PM_Request*>(record.Data())));
}

} // namespace
