// setupapi/SetupTest.h
//
// What the tests of the device installer share: a list of the present network adapters.
#pragma once

#include "notebook/Adapters.h"
#include "notebook/DeviceTree.h"
#include "support/NotebookTest.h"

#include <windows.h>

#include <cfgmgr32.h>
#include <devguid.h>
#include <setupapi.h>

/// The error of a function that answered `done`.
inline DWORD ErrorOf(BOOL done)
{
    return done ? DWORD{ERROR_SUCCESS} : GetLastError();
}

class SetupTest : public NotebookTest
{
protected:
    void TearDown() override
    {
        CloseList();
        NotebookTest::TearDown();
    }

    /// Lists the devices of a class anew.
    void OpenList(const GUID& classGuid = GUID_DEVCLASS_NET, DWORD flags = DIGCF_PRESENT)
    {
        CloseList();
        list = SetupDiGetClassDevsW(&classGuid, nullptr, nullptr, flags);
        ASSERT_NE(INVALID_HANDLE_VALUE, list);
    }
    void CloseList()
    {
        if (list != INVALID_HANDLE_VALUE)
        {
            EXPECT_TRUE(SetupDiDestroyDeviceInfoList(list));
            list = INVALID_HANDLE_VALUE;
        }
    }

    /// The device at an index of the list; its error.
    DWORD Enumerate(DWORD index)
    {
        device = {};
        device.cbSize = sizeof device;
        return ErrorOf(SetupDiEnumDeviceInfo(list, index, &device));
    }

    /// Status and problem of `device`.
    std::pair<ULONG, ULONG> Status() const
    {
        ULONG status = 0;
        ULONG problem = 0;
        EXPECT_EQ(static_cast<CONFIGRET>(CR_SUCCESS),
                  CM_Get_DevNode_Status(&status, &problem, device.DevInst, 0));
        return {status, problem};
    }

    HDEVINFO list = INVALID_HANDLE_VALUE;
    SP_DEVINFO_DATA device = {};
};
