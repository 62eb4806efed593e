// machine/DriverGate.h
//
// The side of the kernel driver's switches that the driver itself asks.
#pragma once

#include "machine/KernelDriver.h"

namespace simulated
{

class DriverGate
{
public:
    /// What refuses opening the device, or the next request; 0 when nothing does.
    static DWORD ErrorOfOpening();
    static DWORD ErrorOfRequest();

    /// Waits here when this request is to be held.
    static void PassHold();

    static void Note(KernelDriver::Request request);
};

} // namespace simulated
