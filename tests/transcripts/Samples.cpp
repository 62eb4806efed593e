// tests/transcripts/Samples.cpp
//
// The table of samples. Scheme 7 is alice's, with AC values that differ from its DC values; scheme 8 is the
// active one.

#include "transcripts/Samples.h"

namespace
{

#define WHOLE_SCHEME                                                                                         \
    "ac.cpuSpeed=50 ac.backlightLevel=2 ac.lanSpeed=3 ac.lums=4 ac.monitorOffTimeOut=1200 "                  \
    "ac.standbyTimeOut=2700 ac.wifi=0 ac.lanStatus=1 ac.threeG=1 dc.cpuSpeed=75 dc.backlightLevel=5 "        \
    "dc.lanSpeed=1 dc.lums=9 dc.monitorOffTimeOut=600 dc.standbyTimeOut=3600 dc.wifi=1 dc.lanStatus=0 "      \
    "dc.threeG=1 IfDefault=2 IconNum=12 IfShow=3"

constexpr Sample kSamples[] = {
    {"GET_CPU_SPEED", "", "", false},
    {"SET_CPU_SPEED", "speed=2", "adaptive", false},
    {"SET_CPU_SPEED", "speed=0", "50 %", false},
    {"GET_MAX_LCD_BRIGHTNESS", "", "", false},
    {"GET_LCD_BRIGHTNESS", "", "", false},
    {"SET_LCD_BRIGHTNESS", "level=3", "", false},
    {"SET_LCD_BRIGHTNESS", "level=-1", "no level", false},
    {"GET_LAN_STATUS", "", "", false},
    {"SET_LAN_STATUS", "status=on", "it is off", false},
    {"SET_LAN_STATUS", "status=off", "refused", false},
    {"GET_LAN_ENABLED_STATUS", "", "", false},
    {"GET_WIRELESS_STATUS", "", "", false},
    {"SET_WIRELESS_STATUS", "status=off", "it is on", false},
    {"SET_WIRELESS_STATUS", "status=on", "it is on already", false},
    {"GET_WIRELESS_ENABLED_STATUS", "", "", false},
    {"GET_BLUETOOTH_STATUS", "", "", false},
    {"SET_BLUETOOTH_STATUS", "status=off", "it is on", false},
    {"SET_BLUETOOTH_STATUS", "status=on", "it is on already", false},
    {"GET_LAN_SPEED", "", "", false},
    {"SET_LAN_SPEED", "speed=0", "another than it has", false},
    {"SET_LAN_SPEED", "speed=2", "the one that it has", false},
    {"GET_3G_STATUS", "", "", false},
    {"SET_3G_STATUS", "status=on", "it is off", false},
    {"SET_3G_STATUS", "status=off", "it is off already", false},
    {"GET_LUMS_LEVEL", "", "", false},
    {"SET_LUMS_LEVEL", "level=3", "", false},
    {"GET_BATTERY_INFO", "battery=0", "the first", false},
    {"GET_BATTERY_INFO", "battery=1", "the second", false},
    {"ADD_SCHEME", "name=\"  Night shift \" desc=\"Quiet and dark\" scheme=7", "", false},
    {"ADD_SCHEME", "name=Travel desc=\"again\" scheme=7", "a taken name", false},
    {"EDIT_SCHEME", "scheme=7 ac=battery name=Wifi value=1", "a variable of the file", false},
    {"EDIT_SCHEME", "scheme=7 ac=battery name=MonitorOffTimeOut value=1200", "one of the system", false},
    {"EDIT_SCHEME", "scheme=7 ac=mains name=CpuSpeed value=0", "the processor", false},
    {"DELETE_SCHEME", "scheme=6", "the first of the user's two", false},
    {"DELETE_SCHEME", "scheme=8", "the active one", false},
    {"QUERY_SCHEME", "scheme=7 ac=battery name=BacklightLevel", "", false},
    {"QUERY_SCHEME", "scheme=7 ac=mains name=StandbyTimeOut", "", false},
    {"QUERY_SCHEME", "scheme=7 ac=mains name=HibernateTimeOut", "", false},
    {"QUERY_SCHEME", "scheme=77 ac=mains name=Wifi", "no such scheme", false},
    {"GET_BATTERY_COUNT", "", "", false},
    {"GET_SCHEME_NAME", "scheme=7", "", false},
    {"GET_ACTIVE_SCHEME", "", "", false},
    {"POST_DOWN_INTERFACE", "", "", false},
    {"GET_USERID", "", "", false},
    {"GET_POWER_INFO", "", "", false},
    {"GET_SCHEME_VAR_COUNT", "name=LanSpeed", "", false},
    {"GET_SCHEME_VAR_OPT_VALUE", "name=MonitorOffTimeOut value=4", "", false},
    {"INIT_CFG_FILE", "", "a known user", false},
    {"INIT_CFG_FILE", "", "a user's first request", true},
    {"GET_INT_FROM_CONFIG", "type=installation file=ORVLCfg.ini section=OrvlDevMgr item=TimeoutMS default=7",
     "", false},
    {"GET_STR_FROM_CONFIG", "type=installation file=ORVLCfg.ini section=ORVACfg item=SchemeSettings",
     "of the installation", false},
    {"GET_STR_FROM_CONFIG", "type=profile file=UserSchemes.ini section=UserList item=User1", "of the profile",
     false},
    {"PUT_INT_INTO_CONFIG", "type=profile file=Window.ini section=Place item=Left value=-800", "", false},
    {"PUT_STR_INTO_CONFIG",
     "type=installation file=ORVLCfg.ini section=ORVACfg item=Title string=\"Two words\"", "", false},
    {"ADD_SCHEME_ALL", "name=\"  Desk \" desc=\"All of it\" scheme=7 " WHOLE_SCHEME, "", false},
    {"QUERY_SCHEME_ALL", "scheme=7", "", false},
    {"EDIT_SCHEME_ALL", "name=ignored desc=ignored scheme=7 " WHOLE_SCHEME, "", false},
    {"APPLY_SCHEME", "scheme=7", "", false},
    {"CLEAR_SCHEMES", "selector=0", "the current user's", false},
    {"CLEAR_SCHEMES", "selector=1", "all users'", false},
    {"AUTORUN_ORVA", "flag=1 path=\"C:\\ORVA\\ORVA.exe\"", "", false},
    {"AUTORUN_ORVA", "flag=0", "there is nothing to remove", false},
};

#undef WHOLE_SCHEME

} // namespace

std::span<const Sample> Samples()
{
    return kSamples;
}

std::vector<std::string> CommandsOfSamples()
{
    std::vector<std::string> commands;
    for (const Sample& sample : Samples())
    {
        if (commands.empty() || commands.back() != sample.command)
        {
            commands.emplace_back(sample.command);
        }
    }
    return commands;
}

std::string Title(const Sample& sample)
{
    return std::string(sample.command) + (*sample.fields == 0 ? "" : " ") + sample.fields + '\n' +
           (*sample.about == 0 ? "" : std::string("(") + sample.about + ")\n");
}
