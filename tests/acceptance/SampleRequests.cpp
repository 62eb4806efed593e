// tests/acceptance/SampleRequests.cpp
//
// One request of each command.

#include "acceptance/SampleRequests.h"

#include "acceptance/Host.h"
#include "acceptance/Schemes.h"

namespace
{

template <class Record>
SampleRequest Request(const char* command, const Record& record)
{
    const std::span<const std::byte> payload = Payload(record);
    return {command, {payload.begin(), payload.end()}};
}

SampleRequest Request(const char* command)
{
    return {command, {}};
}

PM_Config_Data ProfileAccess()
{
    PM_Config_Data data{};
    data.fileType = 1;
    schemes::SetText(data.file, "sample.ini");
    schemes::SetText(data.section, "Section");
    schemes::SetText(data.item, "Key");
    schemes::SetText(data.stringValue, "text");
    return data;
}

PM_AutoRun_Data AutoRun()
{
    PM_AutoRun_Data data{};
    data.flag = 1;
    schemes::SetText(data.path, "C:\\ORVA\\ORVA.exe");
    return data;
}

} // namespace

std::vector<SampleRequest> SampleRequests(int added)
{
    using namespace schemes;
    const LONG on = 1;
    const LONG off = 0;
    const LONG standard = 1;
    const LONG fresh = added;
    return {
        Request("GET_MAX_LCD_BRIGHTNESS"),
        Request("GET_LCD_BRIGHTNESS"),
        Request("SET_LCD_BRIGHTNESS", LONG{3}),
        Request("GET_LAN_STATUS"),
        Request("SET_LAN_STATUS", on),
        Request("GET_LAN_ENABLED_STATUS"),
        Request("GET_WIRELESS_STATUS"),
        Request("SET_WIRELESS_STATUS", off),
        Request("GET_WIRELESS_ENABLED_STATUS"),
        Request("GET_BLUETOOTH_STATUS"),
        Request("SET_BLUETOOTH_STATUS", off),
        Request("GET_LAN_SPEED"),
        Request("SET_LAN_SPEED", LONG{2}),
        Request("GET_3G_STATUS"),
        Request("SET_3G_STATUS", on),
        Request("GET_LUMS_LEVEL"),
        Request("SET_LUMS_LEVEL"),
        Request("GET_BATTERY_COUNT"),
        Request("GET_BATTERY_INFO", LONG{0}),
        Request("GET_POWER_INFO"),
        Request("GET_INT_FROM_CONFIG", ProfileAccess()),
        Request("GET_STR_FROM_CONFIG", ProfileAccess()),
        Request("PUT_INT_INTO_CONFIG", ProfileAccess()),
        Request("PUT_STR_INTO_CONFIG", ProfileAccess()),
        Request("INIT_CFG_FILE"),
        Request("GET_USERID"),
        Request("GET_ACTIVE_SCHEME"),
        Request("GET_SCHEME_VAR_COUNT", Variable(0, 0, "Wifi")),
        Request("GET_SCHEME_VAR_OPT_VALUE", Variable(0, 0, "Wifi", 0)),
        Request("QUERY_SCHEME", Variable(standard, 1, "Wifi")),
        Request("QUERY_SCHEME", Variable(standard, 1, "MonitorOffTimeOut")),
        Request("EDIT_SCHEME", Variable(standard, 1, "Wifi", 1)),
        Request("EDIT_SCHEME", Variable(standard, 1, "MonitorOffTimeOut", 900)),
        Request("QUERY_SCHEME_ALL", standard),
        Request("EDIT_SCHEME_ALL", Whole("", standard)),
        Request("GET_CPU_SPEED"),
        Request("SET_CPU_SPEED", LONG{1}),
        Request("ADD_SCHEME", Identity("First", "about it", standard)),
        Request("GET_SCHEME_NAME", fresh),
        Request("APPLY_SCHEME", standard),
        Request("DELETE_SCHEME", fresh),
        Request("ADD_SCHEME_ALL", Whole("Second", standard)),
        Request("CLEAR_SCHEMES", off),
        Request("CLEAR_SCHEMES", on),
        Request("AUTORUN_ORVA", AutoRun()),
        Request("POST_DOWN_INTERFACE"),
    };
}
