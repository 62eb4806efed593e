// tests/acceptance/PlatformCallsTest.cpp
//
// What each command costs: the exact number of platform calls by class. A change of these numbers is a change
// of what the plug-in asks of Windows and has to be meant.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/SampleRequests.h"
#include "notebook/Trace.h"

using simulated::CallClass;
using simulated::Trace;

namespace
{

std::string Counts()
{
    std::string text;
    const auto counts = Trace::Counts();
    for (std::size_t place = 0; place < counts.size(); ++place)
    {
        if (counts[place] != 0)
        {
            text += (text.empty() ? "" : " ") + std::string(Name(static_cast<CallClass>(place))) + "=" +
                    std::to_string(counts[place]);
        }
    }
    return text;
}

struct Cost
{
    const char* command;
    const char* calls;
};

constexpr Cost kOnXp[] = {
    {"GET_MAX_LCD_BRIGHTNESS", "file=1 log=2 object=1 system=2"},
    {"GET_LCD_BRIGHTNESS", "file=1 log=3 object=1 driver=1 system=2"},
    {"SET_LCD_BRIGHTNESS", "file=1 log=5 object=1 driver=2 system=2"},
    {"GET_LAN_STATUS", "file=1 log=3 object=1 driver=1 system=2"},
    {"SET_LAN_STATUS", "file=1 log=3 object=1 driver=1 system=2"},
    {"GET_LAN_ENABLED_STATUS", "log=5 device=5 text=1"},
    {"GET_WIRELESS_STATUS", "file=1 log=3 object=1 driver=1 system=2"},
    {"SET_WIRELESS_STATUS", "file=1 log=3 object=1 driver=3 system=2"},
    {"GET_WIRELESS_ENABLED_STATUS", "log=5 device=7 text=3"},
    {"GET_BLUETOOTH_STATUS", "file=1 log=3 object=1 driver=1 system=2"},
    {"SET_BLUETOOTH_STATUS", "file=1 log=3 object=1 driver=2 system=2"},
    {"GET_LAN_SPEED", "log=5 registry=6 device=1"},
    {"SET_LAN_SPEED", "log=6 registry=18 device=2"},
    {"GET_3G_STATUS", "file=1 log=2 object=1 driver=1 system=2"},
    {"SET_3G_STATUS", "file=1 log=3 object=1 driver=3 system=2"},
    {"GET_LUMS_LEVEL", "log=1"},
    {"SET_LUMS_LEVEL", "log=1"},
    {"GET_BATTERY_COUNT", "file=1 log=2 object=1 memory=2 power=1 device=6 driver=1 system=1"},
    {"GET_BATTERY_INFO", "file=4 log=15 object=4 memory=6 power=2 device=18 driver=6 system=3"},
    {"GET_POWER_INFO", "file=2 log=2 object=2 memory=4 power=2 device=12 driver=3 system=1"},
    {"GET_INT_FROM_CONFIG", "file=2 log=1 profile=2 shell=1 text=4"},
    {"GET_STR_FROM_CONFIG", "file=2 log=3 profile=1 shell=1 text=5"},
    {"PUT_INT_INTO_CONFIG", "file=2 log=1 profile=1 shell=1 text=4"},
    {"PUT_STR_INTO_CONFIG", "file=2 log=1 profile=1 shell=1 text=4"},
    {"INIT_CFG_FILE", "log=3 text=2 system=1"},
    {"GET_USERID", "log=3 text=2 system=1"},
    {"GET_ACTIVE_SCHEME", "log=4 power=1 text=2 system=1"},
    {"GET_SCHEME_VAR_COUNT", "file=2 log=5 profile=2 registry=6 text=3 system=1"},
    {"GET_SCHEME_VAR_OPT_VALUE", "file=2 log=5 profile=2 registry=6 text=3 system=1"},
    {"QUERY_SCHEME", "file=3 log=7 profile=3 registry=7 shell=1 text=3 system=2"},
    {"QUERY_SCHEME", "log=7 registry=4 power=2 text=3 system=2"},
    {"EDIT_SCHEME", "file=5 log=5 profile=7 registry=13 shell=1 text=3 system=1"},
    {"EDIT_SCHEME", "file=2 log=5 profile=8 registry=10 power=4 text=3 system=1"},
    {"QUERY_SCHEME_ALL", "file=36 log=5 profile=36 registry=104 power=12 shell=12 text=2 system=1"},
    {"EDIT_SCHEME_ALL", "file=70 log=6 profile=127 registry=206 power=24 shell=11 text=3 system=1"},
    {"GET_CPU_SPEED", "log=3 registry=4 power=4 text=2 system=1"},
    {"SET_CPU_SPEED", "file=5 log=6 profile=9 registry=21 object=3 power=11 shell=2 text=2 system=2"},
    {"ADD_SCHEME", "file=97 log=11 profile=115 registry=300 power=4 shell=25 text=4 system=1"},
    {"GET_SCHEME_NAME", "log=7 registry=9 power=1 text=6 system=1"},
    {"APPLY_SCHEME",
     "file=16 log=15 profile=53 registry=76 object=3 module=3 power=25 shell=3 text=2 system=2"},
    {"DELETE_SCHEME", "file=7 log=5 profile=8 registry=6 power=1 shell=3 text=2 system=1"},
    {"ADD_SCHEME_ALL", "file=83 log=12 profile=175 registry=346 power=38 shell=14 text=4 system=1"},
    {"CLEAR_SCHEMES", "file=11 log=12 profile=10 registry=13 object=3 power=3 shell=4 text=2 system=2"},
    {"CLEAR_SCHEMES",
     "file=20 log=50 profile=9 registry=55 object=4 power=2 account=5 shell=4 text=2 system=8"},
    {"AUTORUN_ORVA", "log=4 registry=4 text=1"},
    {"POST_DOWN_INTERFACE", ""},
};

constexpr Cost kOnVista[] = {
    {"GET_MAX_LCD_BRIGHTNESS", "file=1 log=2 system=2"},
    {"GET_LCD_BRIGHTNESS", "log=3 driver=1 system=2"},
    {"SET_LCD_BRIGHTNESS", "log=5 driver=2 system=2"},
    {"GET_LAN_STATUS", "log=3 driver=1 system=2"},
    {"SET_LAN_STATUS", "log=3 driver=1 system=2"},
    {"GET_LAN_ENABLED_STATUS", "log=5 device=5 text=1"},
    {"GET_WIRELESS_STATUS", "log=3 driver=1 system=2"},
    {"SET_WIRELESS_STATUS", "log=3 driver=3 system=2"},
    {"GET_WIRELESS_ENABLED_STATUS", "log=5 device=7 text=3"},
    {"GET_BLUETOOTH_STATUS", "log=3 driver=1 system=2"},
    {"SET_BLUETOOTH_STATUS", "log=3 driver=2 system=2"},
    {"GET_LAN_SPEED", "log=5 registry=6 device=1"},
    {"SET_LAN_SPEED", "log=6 registry=18 device=2"},
    {"GET_3G_STATUS", "log=2 driver=1 system=2"},
    {"SET_3G_STATUS", "log=3 driver=3 system=2"},
    {"GET_LUMS_LEVEL", "log=1"},
    {"SET_LUMS_LEVEL", "log=1"},
    {"GET_BATTERY_COUNT", "file=1 log=2 object=1 memory=2 module=9 power=1 device=6 driver=1 system=1"},
    {"GET_BATTERY_INFO", "file=3 log=15 object=3 memory=6 module=9 power=2 device=18 driver=6 system=3"},
    {"GET_POWER_INFO", "file=2 log=2 object=2 memory=4 module=9 power=2 device=12 driver=3 system=1"},
    {"GET_INT_FROM_CONFIG", "file=2 log=1 profile=2 shell=1 text=4"},
    {"GET_STR_FROM_CONFIG", "file=2 log=3 profile=1 shell=1 text=5"},
    {"PUT_INT_INTO_CONFIG", "file=2 log=1 profile=1 shell=1 text=4"},
    {"PUT_STR_INTO_CONFIG", "file=2 log=1 profile=1 shell=1 text=4"},
    {"INIT_CFG_FILE", "log=3 module=9 text=2 system=1"},
    {"GET_USERID", "log=3 module=9 text=2 system=1"},
    {"GET_ACTIVE_SCHEME",
     "file=6 log=4 profile=5 registry=6 memory=1 module=13 power=1 shell=2 text=4 system=1"},
    {"GET_SCHEME_VAR_COUNT", "file=2 log=5 profile=2 registry=6 module=9 text=3 system=1"},
    {"GET_SCHEME_VAR_OPT_VALUE", "file=2 log=5 profile=2 registry=6 module=9 text=3 system=1"},
    {"QUERY_SCHEME", "file=9 log=7 profile=7 registry=9 module=13 power=2 shell=3 text=5 system=2"},
    {"QUERY_SCHEME", "file=8 log=7 profile=7 registry=12 module=17 power=3 shell=2 text=7 system=2"},
    {"EDIT_SCHEME", "file=11 log=5 profile=11 registry=15 module=13 power=2 shell=3 text=5 system=1"},
    {"EDIT_SCHEME", "file=8 log=5 profile=7 registry=12 module=17 power=3 shell=2 text=7 system=1"},
    {"QUERY_SCHEME_ALL",
     "file=156 log=4 profile=127 registry=180 module=101 power=40 shell=48 text=48 system=1"},
    {"EDIT_SCHEME_ALL",
     "file=182 log=6 profile=189 registry=258 module=101 power=40 shell=47 text=49 system=1"},
    {"GET_CPU_SPEED",
     "file=15 log=3 profile=11 registry=15 memory=1 module=17 power=4 shell=5 text=6 system=1"},
    {"SET_CPU_SPEED", "file=156 log=6 profile=167 registry=216 object=3 memory=2 module=107 power=42 "
                      "shell=43 text=51 system=2"},
    {"ADD_SCHEME", "file=6 log=4 profile=5 registry=6 module=11 power=1 shell=2 text=5 system=1"},
    {"GET_SCHEME_NAME", "file=3 log=5 profile=2 registry=3 module=9 shell=1 text=2 system=1"},
    {"APPLY_SCHEME", "file=181 log=13 profile=184 registry=273 object=3 memory=1 module=146 power=55 "
                     "shell=48 text=69 system=2"},
    {"DELETE_SCHEME", "file=7 log=4 profile=5 registry=6 module=9 shell=3 text=2 system=1"},
    {"ADD_SCHEME_ALL", "file=6 log=6 profile=4 registry=6 module=11 power=1 shell=2 text=5 system=1"},
    {"CLEAR_SCHEMES", "file=135 log=11 profile=144 registry=189 object=3 memory=1 module=95 power=35 "
                      "shell=36 text=45 system=2"},
    {"CLEAR_SCHEMES", "file=147 log=49 profile=143 registry=234 object=4 memory=1 module=95 power=35 "
                      "account=5 shell=37 text=45 system=8"},
    {"AUTORUN_ORVA", "log=4 registry=4 text=1"},
    {"POST_DOWN_INTERFACE", ""},
};

class PlatformCalls : public AcceptanceTest
{
protected:
    void Compare(DWORD major, std::span<const Cost> costs)
    {
        environment::Recreate(major);
        Host host;
        host.Uninitialize();        // the calls of its thread aren't a request's
        host.Send("INIT_CFG_FILE"); // a user's first request looks him up
        std::size_t place = 0;
        for (const SampleRequest& request : SampleRequests(6))
        {
            Trace::Clear();
            host.Send(request.command, request.payload);
            ASSERT_LT(place, costs.size()) << request.command << ": " << Counts();
            EXPECT_EQ(costs[place].command, request.command);
            EXPECT_EQ(costs[place].calls, Counts()) << request.command;
            ++place;
        }
        EXPECT_EQ(costs.size(), place);
    }
};

TEST_F(PlatformCalls, OfEachCommandOnXp)
{
    Compare(5, kOnXp);
}

TEST_F(PlatformCalls, OfEachCommandOnVista)
{
    Compare(6, kOnVista);
}

} // namespace
