// agents/DriverCall.cpp
//
// Sizes a request and hands it to the channel, which it opens and closes for the agents.

#include "agents/DriverCall.h"

#include "agents/OrvlDrvMgr.h"
#include "foundation/OrvlBase.h"
#include "foundation/Results.h"

LONG CallDriver(DriverFunction function, const void* input, void* output, DWORD dataLength,
                DWORD& returned) noexcept
{
    const DriverControl& control = kDriverControls[static_cast<std::size_t>(function)];
    returned = 0;
    const DWORD inputSize = control.inputSize + (control.data == DataIn::Input ? dataLength : 0);
    const DWORD outputSize = control.outputSize + (control.data == DataIn::Output ? dataLength : 0);
    // The channel has the shape of the system call, which takes its input as writable.
    return OrvlDrvIoControl(ControlCode(function), const_cast<void*>(input), inputSize, output, outputSize,
                            &returned, nullptr);
}

LONG CallDriver(DriverFunction function, const void* input, void* output, DWORD dataLength) noexcept
{
    DWORD returned = 0;
    return CallDriver(function, input, output, dataLength, returned);
}

LONG OpenChannel(bool& isSetUp) noexcept
{
    if (isSetUp)
    {
        return kAlreadySetUp;
    }
    const LONG opened = OrvlDrvOpen();
    isSetUp = opened >= 0;
    if (!isSetUp)
    {
        CORVLBase::DBGOUT(L"Open connection with driver failed for 0x%x\n", opened);
    }
    return opened;
}

void CloseChannel(bool& isSetUp) noexcept
{
    if (isSetUp)
    {
        OrvlDrvClose();
        isSetUp = false;
    }
}

LONG ReadMsrRecord(ULONG index, MsrRecord& record) noexcept
{
    record = {};
    return CallDriver(DriverFunction::ReadMsr, &index, &record, 0);
}

LONG WriteMsrRecord(const MsrRecord& record) noexcept
{
    return CallDriver(DriverFunction::WriteMsr, &record, nullptr, 0);
}
