// foundation/InterProcessBoard.cpp
//
// The three kernel objects of a board and the copies in and out of its memory.

#include "foundation/InterProcessBoard.h"

#include "foundation/Owners.h"
#include "foundation/Results.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace
{

constexpr DWORD kWholeObject = 0x1F0003;
constexpr DWORD kWholeMapping = 0xF001F;
constexpr LONG kHighestCount = 0x7FFFFFFF;
constexpr DWORD kLockTimeOut = 1000;

constexpr wchar_t kPrefix[] = L"Global\\";

// What is set aside for prefix and instance number of a name.
constexpr std::size_t kNameOverhead = 10;

// Passes `condition` on; when it is false, the debugger gets `format` with the last error.
bool Report(bool condition, const wchar_t* format) noexcept
{
    if (!condition)
    {
        OutputDebugStringW(text::Formatted<256>(format, GetLastError()).Text());
    }
    return condition;
}

// Security attributes that grant everybody access to what is created with them, and let it be inherited.
class OpenToAll
{
public:
    // False when the system refuses; it has been reported then.
    bool Prepare() noexcept
    {
        m_attributes = {sizeof m_attributes, &m_descriptor, TRUE};
        return Report(InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION) != FALSE,
                      L"Cannot InitializeSecurityDescriptor for 0x%x") &&
               Report(SetSecurityDescriptorDacl(&m_descriptor, TRUE, nullptr, FALSE) != FALSE,
                      L"Cannot SetSecurityDescriptorDacl for 0x%x");
    }

    SECURITY_ATTRIBUTES* Get() noexcept
    {
        return &m_attributes;
    }

private:
    SECURITY_DESCRIPTOR m_descriptor{};
    SECURITY_ATTRIBUTES m_attributes{};
};

bool IsRange(LONG offset, LONG size) noexcept
{
    return offset >= 0 && size >= 0 && offset <= std::numeric_limits<LONG>::max() - size;
}

// Maps the mapping's first bytes up to the end of the range and lets `access` at the range, under the lock.
// The view is gone afterwards; when there is none, `failureText` is reported.
template <class Access>
LONG OnRange(CInterProcessBoard& board, HANDLE map, LONG offset, LONG size, const wchar_t* failureText,
             Access access) noexcept
{
    if (!IsRange(offset, size) || board.IsLocked() != 0 || board.Lock(kLockTimeOut) != kSucceeded)
    {
        return kGeneralFailure;
    }
    const auto begin = static_cast<SIZE_T>(offset);
    const auto bytes = static_cast<SIZE_T>(size);
    owners::View view(MapViewOfFile(map, kWholeMapping, 0, 0, begin + bytes));
    const bool isMapped = Report(static_cast<bool>(view), failureText);
    if (isMapped)
    {
        access(static_cast<char*>(view.Get()) + begin, bytes);
        view.Reset();
    }
    board.UnLock();
    return isMapped ? kSucceeded : kGeneralFailure;
}

} // namespace

CInterProcessBoard::CInterProcessBoard() noexcept = default;
CInterProcessBoard::CInterProcessBoard(const CInterProcessBoard&) noexcept = default;
CInterProcessBoard& CInterProcessBoard::operator=(const CInterProcessBoard&) noexcept = default;

CInterProcessBoard::~CInterProcessBoard()
{
    CloseObjects();
}

LONG CInterProcessBoard::CloseObjects() noexcept
{
    for (HANDLE* const object : {&m_hEvent, &m_hMap, &m_hSemaphore})
    {
        if (*object != nullptr)
        {
            CloseHandle(*object);
            *object = nullptr;
        }
    }
    return kSucceeded;
}

LONG CInterProcessBoard::Reset(const wchar_t* name, LONG size, int create, ULONG instance) noexcept
{
    if (m_hEvent != nullptr)
    {
        CloseObjects();
    }

    wchar_t eventName[text::kPathCapacity];
    wchar_t mapName[text::kPathCapacity];
    wchar_t semaphoreName[text::kPathCapacity];
    constexpr auto kCapacity = static_cast<int>(text::kPathCapacity);
    if (ConstructName(L"IPB_Event", name, eventName, kCapacity, instance) == 0 ||
        ConstructName(L"IPB_Map", name, mapName, kCapacity, instance) == 0 ||
        ConstructName(L"IPB_Semaphore", name, semaphoreName, kCapacity, instance) == 0)
    {
        return kGeneralFailure;
    }

    if (create != 0)
    {
        OpenToAll security;
        if (size < 0 || !security.Prepare())
        {
            return kGeneralFailure;
        }
        m_hEvent = CreateEventW(security.Get(), TRUE, FALSE, eventName);
        m_hMap = CreateFileMappingW(INVALID_HANDLE_VALUE, security.Get(), PAGE_READWRITE, 0,
                                    static_cast<DWORD>(size), mapName);
        m_hSemaphore = CreateSemaphoreW(security.Get(), 1, kHighestCount, semaphoreName);
    }
    else
    {
        m_hEvent = OpenEventW(kWholeObject, FALSE, eventName);
        m_hMap = OpenFileMappingW(kWholeMapping, FALSE, mapName);
        m_hSemaphore = OpenSemaphoreW(kWholeObject, FALSE, semaphoreName);
    }
    if (!Report(m_hEvent != nullptr && m_hMap != nullptr && m_hSemaphore != nullptr,
                L"Cannot Reset for 0x%x"))
    {
        CloseObjects();
        return kGeneralFailure;
    }
    return kSucceeded;
}

LONG CInterProcessBoard::Paste(LONG offset, void* data, LONG size) noexcept
{
    return OnRange(*this, m_hMap, offset, size,
                   L"Failed in calling MapViewOfFile in CInterProcessBoard::Paste() with last Error %x.\n",
                   [data](void* place, std::size_t bytes)
                   { data != nullptr ? std::memcpy(place, data, bytes) : std::memset(place, 0, bytes); });
}

LONG CInterProcessBoard::Read(LONG offset, void* data, LONG size) noexcept
{
    return data == nullptr
               ? kGeneralFailure
               : OnRange(*this, m_hMap, offset, size,
                         L"Failed in calling MapViewOfFile in CInterProcessBoard::Read().\r\n",
                         [data](const void* place, std::size_t bytes) { std::memcpy(data, place, bytes); });
}

LONG CInterProcessBoard::Clear(LONG offset, LONG size) noexcept
{
    return Paste(offset, nullptr, size);
}

LONG CInterProcessBoard::Lock(LONG timeout) noexcept
{
    const bool isTaken = WaitForSingleObject(m_hSemaphore, static_cast<DWORD>(timeout)) == WAIT_OBJECT_0;
    return Report(isTaken, L"Fatal,CInterProcessBoard::Lock failed.\r\n") ? kSucceeded : kGeneralFailure;
}

LONG CInterProcessBoard::UnLock() noexcept
{
    return Report(ReleaseSemaphore(m_hSemaphore, 1, nullptr) != FALSE,
                  L"Fatal,calling ReleaseSemaphore in CInterProcessBoard::UnLock failed.\r\n")
               ? kSucceeded
               : kGeneralFailure;
}

int CInterProcessBoard::IsLocked() noexcept
{
    // Raising the count shows what it was. What wasn't raised mustn't be taken back: that would keep the
    // lock.
    LONG previous = 0;
    if (!ReleaseSemaphore(m_hSemaphore, 1, &previous))
    {
        return 1;
    }
    WaitForSingleObject(m_hSemaphore, kLockTimeOut);
    return previous <= 0 ? 1 : 0;
}

int CInterProcessBoard::IsDataAvailble(ULONG timeout) noexcept
{
    return WaitForSingleObject(m_hEvent, timeout) == WAIT_OBJECT_0 ? 1 : 0;
}

int CInterProcessBoard::Flag(int reset) noexcept
{
    return reset != 0 ? ResetEvent(m_hEvent) : SetEvent(m_hEvent);
}

int CInterProcessBoard::ConstructName(const wchar_t* kind, const wchar_t* name, wchar_t* buffer, int size,
                                      ULONG instance) noexcept
{
    if (kind == nullptr || name == nullptr || buffer == nullptr || size <= 0)
    {
        return 0;
    }
    wchar_t number[16];
    const std::size_t digits = text::Format(number, L"%d", instance);
    // A number of many digits needs more than what is set aside.
    const std::size_t overhead = std::max(kNameOverhead, std::size(kPrefix) - 1 + digits);
    if (text::Length(kind) + text::Length(name) + overhead > static_cast<std::size_t>(size) - 1)
    {
        return 0;
    }
    text::Format(buffer, static_cast<std::size_t>(size), L"%s%s%s%s", kPrefix, kind, name, number);
    return 1;
}
