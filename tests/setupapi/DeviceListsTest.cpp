// setupapi/DeviceListsTest.cpp
//
// Lists of devices and of interfaces, properties, ids and class keys.

#include "notebook/Batteries.h"
#include "notebook/Text.h"
#include "setupapi/SetupTest.h"

#include <gmock/gmock.h>
#include <poclass.h>

#include <cstring>

namespace
{

using namespace simulated;
using testing::ElementsAre;

constexpr GUID kUnknownClass = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};

} // namespace

class DeviceListsTest : public SetupTest
{
protected:
    /// A property of `device`, with its error and what the function tells of its size.
    DWORD Property(DWORD number, DWORD size)
    {
        buffer.assign(size + 2, 0xCC);
        type = required = 0;
        return ErrorOf(SetupDiGetDeviceRegistryPropertyW(
            list, &device, number, &type, size == 0 ? nullptr : buffer.data(), size, &required));
    }

    std::vector<std::string> Descriptions()
    {
        std::vector<std::string> descriptions;
        for (DWORD index = 0; Enumerate(index) == ERROR_SUCCESS; ++index)
        {
            EXPECT_EQ(0U, Property(SPDRP_DEVICEDESC, 520));
            descriptions.push_back(ToUtf8(reinterpret_cast<const wchar_t*>(buffer.data())));
        }
        return descriptions;
    }

    std::vector<BYTE> buffer;
    DWORD type = 0;
    DWORD required = 0;
};

TEST_F(DeviceListsTest, DevicesComeInTheOrderOfTheMachine)
{
    Adapters::Clear();
    Adapters::Add("First", {});
    const std::string second = Adapters::Add("50% faster %s%n adapter", {});
    Adapters::Add("Third", {});
    OpenList();
    EXPECT_THAT(Descriptions(), ElementsAre("First", "50% faster %s%n adapter", "Third"));
    EXPECT_EQ(259U, Enumerate(3));
    DeviceTree::SetPresent(second, false); // the list stays as it was
    EXPECT_EQ(3U, Descriptions().size());
    OpenList();
    EXPECT_THAT(Descriptions(), ElementsAre("First", "Third"));
    OpenList(GUID_DEVCLASS_NET, 0); // those of yesterday too
    EXPECT_EQ(3U, Descriptions().size());
    OpenList(kUnknownClass);
    EXPECT_EQ(259U, Enumerate(0));
    EXPECT_EQ(INVALID_HANDLE_VALUE, SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_PRESENT));
    EXPECT_EQ(87U, GetLastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, SetupDiGetClassDevsW(&GUID_DEVCLASS_NET, nullptr, nullptr, 0x100));
    EXPECT_EQ(1004U, GetLastError());
}

TEST_F(DeviceListsTest, RecordsMustTellTheirSizeAndBelongToTheList)
{
    OpenList();
    const std::string id = Adapters::All()[0];
    wchar_t text[260] = {};
    const DWORD needed = static_cast<DWORD>(id.size() + 1);
    SP_DEVINFO_DATA wrong = {};
    wrong.cbSize = sizeof wrong - 1;
    EXPECT_EQ(1784U, ErrorOf(SetupDiEnumDeviceInfo(list, 0, &wrong)));
    ASSERT_EQ(0U, Enumerate(0));
    EXPECT_EQ(122U, ErrorOf(SetupDiGetDeviceInstanceIdW(list, &device, text, needed - 1, &required)));
    EXPECT_EQ(needed, required);
    EXPECT_EQ(0U, ErrorOf(SetupDiGetDeviceInstanceIdW(list, &device, text, needed, nullptr)));
    EXPECT_EQ(id, ToUtf8(text));
    device.cbSize = 0;
    EXPECT_EQ(1784U, Property(SPDRP_DEVICEDESC, 520));
    device.cbSize = sizeof device;
    device.Reserved = 77;
    EXPECT_EQ(87U, Property(SPDRP_DEVICEDESC, 520));
    EXPECT_EQ(6U, ErrorOf(SetupDiEnumDeviceInfo(INVALID_HANDLE_VALUE, 0, &device)));

    SP_DEVINFO_LIST_DETAIL_DATA_W detail = {};
    detail.cbSize = sizeof detail - 1;
    EXPECT_EQ(1784U, ErrorOf(SetupDiGetDeviceInfoListDetailW(list, &detail)));
    detail.cbSize = sizeof detail;
    EXPECT_TRUE(SetupDiGetDeviceInfoListDetailW(list, &detail));
    EXPECT_EQ(0, std::memcmp(&GUID_DEVCLASS_NET, &detail.ClassGuid, sizeof(GUID)));
}

TEST_F(DeviceListsTest, PropertiesHaveTypesAndSizes)
{
    OpenList();
    ASSERT_EQ(0U, Enumerate(0));
    constexpr DWORD kSize = 35 * 2; // "Realtek PCIe GBE Family Controller" and its end
    EXPECT_EQ(0U, Property(SPDRP_DEVICEDESC, kSize));
    EXPECT_EQ(REG_SZ, type);
    EXPECT_EQ(kSize, required);
    EXPECT_EQ(0xCC, buffer[kSize]);
    EXPECT_EQ(122U, Property(SPDRP_DEVICEDESC, kSize - 1));
    EXPECT_EQ(kSize, required);
    EXPECT_EQ(0xCC, buffer[0]);
    EXPECT_EQ(122U, Property(SPDRP_DEVICEDESC, 0));
    EXPECT_EQ(13U, Property(SPDRP_FRIENDLYNAME, 520)); // this adapter has none
    EXPECT_EQ(ERROR_INVALID_REG_PROPERTY, Property(0x1000, 520));
    DeviceTree::SetValue(Adapters::All()[0], "Capabilities", "0x14");
    EXPECT_EQ(0U, Property(SPDRP_CAPABILITIES, 4));
    EXPECT_EQ(REG_DWORD, type);
    EXPECT_EQ(0x14, buffer[0]);
    EXPECT_EQ(0U, Property(SPDRP_CLASS, 8));
    EXPECT_EQ("Net", ToUtf8(reinterpret_cast<const wchar_t*>(buffer.data())));
}

TEST_F(DeviceListsTest, InterfacesLeadToAPath)
{
    Batteries::Add();
    OpenList(GUID_DEVICE_BATTERY, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA data = {};
    EXPECT_EQ(1784U, ErrorOf(SetupDiEnumDeviceInterfaces(list, nullptr, &GUID_DEVICE_BATTERY, 0, &data)));
    data.cbSize = sizeof data;
    EXPECT_EQ(259U, ErrorOf(SetupDiEnumDeviceInterfaces(list, nullptr, &GUID_DEVICE_BATTERY, 2, &data)));
    EXPECT_EQ(259U, ErrorOf(SetupDiEnumDeviceInterfaces(list, nullptr, &kUnknownClass, 0, &data)));
    ASSERT_TRUE(SetupDiEnumDeviceInterfaces(list, nullptr, &GUID_DEVICE_BATTERY, 1, &data));

    EXPECT_EQ(122U, ErrorOf(SetupDiGetDeviceInterfaceDetailW(list, &data, nullptr, 0, &required, nullptr)));
    const std::string path = "\\\\?\\acpi#pnp0c0a#1#{72631e54-78a4-11d0-bcf7-00aa00b7b32a}";
    ASSERT_EQ(4 + 2 * (path.size() + 1), required);
    std::vector<DWORD> room(required / sizeof(DWORD) + 1);
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(room.data());
    EXPECT_EQ(1784U,
              ErrorOf(SetupDiGetDeviceInterfaceDetailW(list, &data, detail, required, nullptr, nullptr)));
    detail->cbSize = sizeof *detail;
    EXPECT_EQ(122U,
              ErrorOf(SetupDiGetDeviceInterfaceDetailW(list, &data, detail, required - 1, nullptr, nullptr)));
    device.cbSize = sizeof device;
    EXPECT_TRUE(SetupDiGetDeviceInterfaceDetailW(list, &data, detail, required, nullptr, &device));
    EXPECT_EQ(path, ToUtf8(reinterpret_cast<const wchar_t*>(room.data() + 1)));
    EXPECT_EQ(0U, Property(SPDRP_CLASS, 16));
    EXPECT_EQ("Battery", ToUtf8(reinterpret_cast<const wchar_t*>(buffer.data())));
}

TEST_F(DeviceListsTest, ClassKeysAreOfThisMachineAndOfOneKind)
{
    const struct
    {
        GUID classGuid;
        DWORD flags;
        const wchar_t* machine;
        DWORD error;
    } cases[] = {
        {kUnknownClass, DIOCR_INSTALLER, nullptr, ERROR_INVALID_CLASS},
        {kUnknownClass, DIOCR_INTERFACE, nullptr, ERROR_NO_SUCH_INTERFACE_CLASS},
        {GUID_DEVCLASS_NET, 3, nullptr, 1004},
        {GUID_DEVCLASS_NET, DIOCR_INSTALLER, L"\\\\elsewhere", ERROR_INVALID_MACHINENAME},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(INVALID_HANDLE_VALUE,
                  SetupDiOpenClassRegKeyExW(&row.classGuid, KEY_READ, row.flags, row.machine, nullptr));
        EXPECT_EQ(row.error, GetLastError());
    }
}
