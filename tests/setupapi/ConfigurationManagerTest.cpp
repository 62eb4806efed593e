// setupapi/ConfigurationManagerTest.cpp
//
// Locating and reading the nodes of the device tree. The walk from node to node is in agents/DevMgrTest.cpp.

#include "setupapi/SetupTest.h"

namespace
{

using namespace simulated;

using ConfigurationManagerTest = NotebookTest;

constexpr CONFIGRET kDone = CR_SUCCESS;
constexpr CONFIGRET kNoNode = CR_NO_SUCH_DEVNODE;

} // namespace

TEST_F(ConfigurationManagerTest, PropertiesAndIdsNeedRoom)
{
    wchar_t id[] = L"acpi_hal\\pnp0c08\\0";
    DEVINST node = 0;
    ASSERT_EQ(kDone, CM_Locate_DevNodeW(&node, id, 0));
    ULONG length = 0;
    EXPECT_EQ(kDone, CM_Get_Device_ID_Size(&length, node, 0));
    EXPECT_EQ(18U, length);
    wchar_t text[260] = {};
    EXPECT_EQ(CONFIGRET{CR_BUFFER_SMALL}, CM_Get_Device_IDW(node, text, length, 0));
    EXPECT_EQ(kDone, CM_Get_Device_IDW(node, text, length + 1, 0));

    DEVINST root = 0;
    DEVINST none = 0;
    EXPECT_EQ(kDone, CM_Locate_DevNodeW(&root, nullptr, 0));
    EXPECT_EQ(kNoNode, CM_Get_Parent(&none, root, 0));
    EXPECT_EQ(kNoNode, CM_Get_Sibling(&none, root, 0));
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
    EXPECT_EQ(kNoNode, CM_Locate_DevNodeW(&node, id, 0));
    EXPECT_EQ(kNoNode, CM_Get_DevNode_Status(&length, &problem, node, 0));
}
