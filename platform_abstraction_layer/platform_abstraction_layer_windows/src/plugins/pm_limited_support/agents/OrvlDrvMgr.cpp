// agents/OrvlDrvMgr.cpp
//
// The channel and its three exported entry points.

#include "agents/OrvlDrvMgr.h"

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"

#include <cstddef>
#include <new>

namespace
{

// From this major version on the connection is opened once and stays.
constexpr BYTE kFirstResidentVersion = 6;

// Logs the version of the system. True when a connection stays open until the library is unloaded.
bool StaysConnected() noexcept
{
    const DWORD version = GetVersion();
    const BYTE major = LOBYTE(LOWORD(version));
    CORVLBase::DBGOUT(L"Windows version %d.%d", major, HIBYTE(LOWORD(version)));
    return major >= kFirstResidentVersion;
}

// Room for the object and not the object itself: the destructors of static objects run at the end of the
// process too, when a thread that was in a driver call has died inside the lock.
alignas(COrvlDrvMgr) std::byte room[sizeof(COrvlDrvMgr)];

COrvlDrvMgr& Channel() noexcept
{
    return *std::launder(reinterpret_cast<COrvlDrvMgr*>(room));
}

} // namespace

COrvlDrvMgr::COrvlDrvMgr() noexcept : m_section(), m_hDevice(nullptr)
{
    InitializeCriticalSection(&m_section);
}

COrvlDrvMgr::~COrvlDrvMgr()
{
    {
        const owners::SectionLock lock(m_section);
        ReplaceHandle(nullptr);
    }
    DeleteCriticalSection(&m_section);
}

void COrvlDrvMgr::ReplaceHandle(HANDLE handle) noexcept
{
    const HANDLE old = m_hDevice.exchange(handle);
    if (old != nullptr)
    {
        CloseHandle(old);
    }
}

LONG COrvlDrvMgr::Open() noexcept
{
    const bool stays = StaysConnected();
    if (stays && m_hDevice != nullptr)
    {
        return kSucceeded;
    }

    const owners::SectionLock lock(m_section);
    if (stays && m_hDevice != nullptr)
    {
        return kSucceeded; // another thread has opened it in the meantime
    }
    const HANDLE opened = CreateFileW(L"\\\\.\\orvlebl", GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        CORVLBase::DBGOUT(L"Open connection with driver failed for %d.\n", error);
        ReplaceHandle(nullptr);
        return ResultFromWin32(error);
    }
    ReplaceHandle(opened);
    return kSucceeded;
}

LONG COrvlDrvMgr::Close() noexcept
{
    if (StaysConnected())
    {
        return kSucceeded;
    }
    const owners::SectionLock lock(m_section);
    ReplaceHandle(nullptr);
    return kSucceeded;
}

LONG COrvlDrvMgr::DeviceIoControl(DWORD dwIoControlCode, LPVOID lpInBuffer, DWORD nInBufferSize,
                                  LPVOID lpOutBuffer, DWORD nOutBufferSize, LPDWORD lpBytesReturned,
                                  LPOVERLAPPED lpOverlapped) noexcept
{
    if (!Check(m_hDevice != nullptr, L"COrvlDrvMgr::DeviceIoControl failed: device not opened\n") ||
        !Check(TryEnterCriticalSection(&m_section) != FALSE,
               L"COrvlDrvMgr::DeviceIoControl failed for cannot enter the critical section\n"))
    {
        return kGeneralFailure;
    }

    // Another thread may have closed the channel since the test above; the null handle is refused below.
    LONG result = kSucceeded;
    if (!::DeviceIoControl(m_hDevice, dwIoControlCode, lpInBuffer, nInBufferSize, lpOutBuffer, nOutBufferSize,
                           lpBytesReturned, lpOverlapped))
    {
        const DWORD error = GetLastError();
        CORVLBase::DBGOUT(L"COrvlDrvMgr::DeviceIoControl failed: error code 0x%x\n", error);
        result = ResultFromWin32(error);
    }
    LeaveCriticalSection(&m_section);
    return result;
}

void driver_channel::SetUp() noexcept
{
    new (room) COrvlDrvMgr;
}

void driver_channel::TearDown() noexcept
{
    Channel().~COrvlDrvMgr();
}

LONG OrvlDrvOpen() noexcept
{
    return Channel().Open();
}

LONG OrvlDrvClose() noexcept
{
    return Channel().Close();
}

LONG OrvlDrvIoControl(DWORD dwIoControlCode, LPVOID lpInBuffer, DWORD nInBufferSize, LPVOID lpOutBuffer,
                      DWORD nOutBufferSize, LPDWORD lpBytesReturned, LPOVERLAPPED lpOverlapped) noexcept
{
    return Channel().DeviceIoControl(dwIoControlCode, lpInBuffer, nInBufferSize, lpOutBuffer, nOutBufferSize,
                                     lpBytesReturned, lpOverlapped);
}
