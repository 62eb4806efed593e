// setupapi/ConfigurationManagerTest.cpp
//
// Walking the device tree and reading its nodes.

#include "notebook/Text.h"
#include "setupapi/SetupTest.h"

#include <gmock/gmock.h>

namespace
{

using namespace simulated;
using testing::ElementsAre;

using ConfigurationManagerTest = NotebookTest;

std::string IdOf(DEVINST node)
{
    wchar_t text[MAX_DEVICE_ID_LEN] = {};
    EXPECT_EQ(static_cast<CONFIGRET>(CR_SUCCESS), CM_Get_Device_IDW(node, text, MAX_DEVICE_ID_LEN, 0));
    return ToUtf8(text);
}

DEVINST Locate(const char* id)
{
    std::vector<wchar_t> text = ToUtf16(id);
    text.push_back(0);
    DEVINST node = 0;
    return CM_Locate_DevNodeW(&node, text.data(), 0) == CR_SUCCESS ? node : 0;
}

/// Ids of all nodes below `node`, depth first, parents before their children.
std::vector<std::string> Walk(DEVINST node)
{
    std::vector<std::string> ids;
    DEVINST child = 0;
    for (CONFIGRET found = CM_Get_Child(&child, node, 0); found == CR_SUCCESS;
         found = CM_Get_Sibling(&child, child, 0))
    {
        DEVINST parent = 0;
        EXPECT_EQ(static_cast<CONFIGRET>(CR_SUCCESS), CM_Get_Parent(&parent, child, 0));
        EXPECT_EQ(node, parent);
        ids.push_back(IdOf(child));
        const std::vector<std::string> below = Walk(child);
        ids.insert(ids.end(), below.begin(), below.end());
    }
    return ids;
}

} // namespace

TEST_F(ConfigurationManagerTest, TheTreeIsWalkedDepthFirst)
{
    for (const std::string& id : DeviceTree::All())
    {
        DeviceTree::Remove(id);
    }
    DeviceTree::Add({"ROOT\\A\\0", GUID_DEVCLASS_SYSTEM, "a"});
    DeviceTree::Add({"ROOT\\B\\0", GUID_DEVCLASS_SYSTEM, "b"});
    DeviceTree::Add({"PCI\\A2\\0", GUID_DEVCLASS_NET, "a2", "root\\a\\0"});
    DeviceTree::Add({"PCI\\GONE\\0", GUID_DEVCLASS_NET, "gone", "ROOT\\A\\0"});
    DeviceTree::Add({"PCI\\A1\\0", GUID_DEVCLASS_NET, "a1", "ROOT\\A\\0"});
    DeviceTree::Add({"PCI\\A2X\\0", GUID_DEVCLASS_NET, "a2x", "PCI\\A2\\0"});
    DeviceTree::SetPresent("PCI\\GONE\\0", false);
    DEVINST root = 0;
    ASSERT_EQ(static_cast<CONFIGRET>(CR_SUCCESS), CM_Locate_DevNodeW(&root, nullptr, 0));
    EXPECT_EQ("HTREE\\ROOT\\0", IdOf(root));
    EXPECT_THAT(Walk(root),
                ElementsAre("ROOT\\A\\0", "PCI\\A2\\0", "PCI\\A2X\\0", "PCI\\A1\\0", "ROOT\\B\\0"));
    DEVINST none = 0;
    EXPECT_EQ(static_cast<CONFIGRET>(CR_NO_SUCH_DEVNODE), CM_Get_Parent(&none, root, 0));
    EXPECT_EQ(static_cast<CONFIGRET>(CR_NO_SUCH_DEVNODE), CM_Get_Sibling(&none, root, 0));
    EXPECT_EQ(0U, Locate("PCI\\GONE\\0"));
    EXPECT_NE(0U, Locate("pci\\a1\\0"));
}

TEST_F(ConfigurationManagerTest, PropertiesAndIdsNeedRoom)
{
    const DEVINST node = Locate("ACPI_HAL\\PNP0C08\\0");
    ULONG length = 0;
    EXPECT_EQ(static_cast<CONFIGRET>(CR_SUCCESS), CM_Get_Device_ID_Size(&length, node, 0));
    EXPECT_EQ(18U, length);
    wchar_t text[260] = {};
    EXPECT_EQ(static_cast<CONFIGRET>(CR_BUFFER_SMALL), CM_Get_Device_IDW(node, text, length, 0));
    EXPECT_EQ(static_cast<CONFIGRET>(CR_SUCCESS), CM_Get_Device_IDW(node, text, length + 1, 0));

    DEVINST root = 0;
    CM_Locate_DevNodeW(&root, nullptr, 0);
    constexpr ULONG kDescriptionSize = 2 * sizeof "Microsoft ACPI-Compliant System";
    const struct
    {
        DEVINST node;
        ULONG property;
        ULONG room;
        CONFIGRET result;
        ULONG size;
    } cases[] = {
        {node, CM_DRP_DEVICEDESC, 520, CR_SUCCESS, kDescriptionSize},
        {node, CM_DRP_DEVICEDESC, kDescriptionSize, CR_SUCCESS, kDescriptionSize},
        {node, CM_DRP_DEVICEDESC, kDescriptionSize - 1, CR_BUFFER_SMALL, kDescriptionSize},
        {node, CM_DRP_FRIENDLYNAME, 520, CR_NO_SUCH_VALUE, 0},
        {root, CM_DRP_DEVICEDESC, 520, CR_NO_SUCH_VALUE, 0},
        {node, 0, 520, CR_INVALID_PROPERTY, 520},
        {node, 0x100, 520, CR_INVALID_PROPERTY, 520},
        {9999, CM_DRP_DEVICEDESC, 520, CR_INVALID_DEVNODE, 520},
    };
    for (const auto& row : cases)
    {
        ULONG type = 0;
        ULONG size = row.room;
        EXPECT_EQ(row.result,
                  CM_Get_DevNode_Registry_PropertyW(row.node, row.property, &type, text, &size, 0));
        EXPECT_EQ(row.size, size);
    }

    ULONG problem = 0;
    DeviceTree::SetPresent("ACPI_HAL\\PNP0C08\\0", false);
    EXPECT_EQ(static_cast<CONFIGRET>(CR_NO_SUCH_DEVNODE), CM_Get_DevNode_Status(&length, &problem, node, 0));
}
