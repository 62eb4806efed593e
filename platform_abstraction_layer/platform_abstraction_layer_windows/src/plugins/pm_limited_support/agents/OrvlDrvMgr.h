// agents/OrvlDrvMgr.h
//
// The process's one connection to the kernel driver: when it is opened and closed, who may be in the driver,
// and how the driver's errors are reported. DriverRecords.h documents what is sent.
#pragma once

#include "foundation/Api.h"

#include <windows.h>

#include <atomic>

/// The channel. There is one object, in static memory.
class ORVL_API COrvlDrvMgr
{
public:
    COrvlDrvMgr() noexcept;
    ~COrvlDrvMgr();
    COrvlDrvMgr(const COrvlDrvMgr&) = delete;
    COrvlDrvMgr& operator=(const COrvlDrvMgr&) = delete;

    /// Opens the connection. From major version 6 on a connection in place is used; below, a new one
    /// replaces it. 0, or the translated error with the channel closed.
    [[nodiscard]] LONG Open() noexcept;

    /// Closes the connection below major version 6; from 6 on it stays. Always 0.
    LONG Close() noexcept;

    /// Sends one request. 0, the driver's translated error, or 0x80004005 when the channel is closed or
    /// another thread is in a driver call: there is no waiting for the driver.
    [[nodiscard]] LONG DeviceIoControl(DWORD dwIoControlCode, LPVOID lpInBuffer, DWORD nInBufferSize,
                                       LPVOID lpOutBuffer, DWORD nOutBufferSize, LPDWORD lpBytesReturned,
                                       LPOVERLAPPED lpOverlapped) noexcept;

private:
    void ReplaceHandle(HANDLE handle) noexcept;

    CRITICAL_SECTION m_section;
    std::atomic<HANDLE> m_hDevice; ///< null whenever the channel is closed
};

namespace driver_channel
{

/// At load and unload of the library: creates the object; destroys it and closes its connection.
void SetUp() noexcept;
void TearDown() noexcept;

} // namespace driver_channel

extern "C"
{
    /// `COrvlDrvMgr::Open`.
    [[nodiscard]] ORVL_API LONG OrvlDrvOpen() noexcept;

    /// `COrvlDrvMgr::Close`.
    ORVL_API LONG OrvlDrvClose() noexcept;

    /// `COrvlDrvMgr::DeviceIoControl`.
    [[nodiscard]] ORVL_API LONG OrvlDrvIoControl(DWORD dwIoControlCode, LPVOID lpInBuffer,
                                                 DWORD nInBufferSize, LPVOID lpOutBuffer,
                                                 DWORD nOutBufferSize, LPDWORD lpBytesReturned,
                                                 LPOVERLAPPED lpOverlapped) noexcept;
}
