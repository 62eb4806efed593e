// machine/KernelDriver.h
//
// The kernel driver "\\.\orvlebl" for tests and tools: whether it is present and accepts requests, what it
// was asked, and how long it takes. machine.ini, section "Driver":
//
//   Present=1        0: the device can't be opened, ERROR_FILE_NOT_FOUND
//   Busy=0           1: every request is refused with ERROR_BUSY; opening works
//   RequestError=0   every request is refused with this error
#pragma once

#include <windef.h>

#include <vector>

namespace simulated
{

class KernelDriver
{
public:
    [[nodiscard]] static bool IsPresent();
    static bool SetPresent(bool present);
    [[nodiscard]] static bool IsBusy();
    static bool SetBusy(bool busy);

    /// Refuses every request with `error` from now on; 0 ends that.
    static void RefuseRequests(DWORD error);

    /// One request as it reached the driver and left it.
    struct Request
    {
        DWORD code;
        std::vector<BYTE> input;
        DWORD outputSize;
        std::vector<BYTE> output; ///< what went back
        DWORD error;
    };

    /// The requests of this process since the last `ForgetRequests`, oldest first; the last thousand.
    static std::vector<Request> Requests();
    static void ForgetRequests();

    // Holding a request inside the driver shows what happens to other threads of this process meanwhile.

    /// Lets the next request wait inside the driver until `LetGo`.
    static void Hold();

    /// True as soon as a request waits inside; false when none came for `milliseconds` of real time.
    [[nodiscard]] static bool WaitUntilHeld(unsigned milliseconds);
    static void LetGo();
};

/// The driver's own side of these switches.
class DriverGate
{
public:
    /// What refuses the next request; 0 when nothing does.
    static DWORD ErrorOfRequest();

    /// Waits here when this request is to be held.
    static void PassHold();

    static void Note(KernelDriver::Request request);
};

} // namespace simulated
