// service/Boards.cpp
//
// Takes requests from one board and puts answers on the other.

#include "Boards.h"

#include <cstring>

namespace service
{

namespace
{

using namespace service_boards;

// A board refuses at once while the other side copies, which takes microseconds; only a process that died
// while copying holds the lock for longer.
constexpr int kAttempts = 100;
constexpr DWORD kPause = 10;

template <class Access>
bool Retry(Access access)
{
    for (int attempt = 0; attempt < kAttempts; ++attempt)
    {
        if (access() == 0)
        {
            return true;
        }
        Sleep(kPause);
    }
    return false;
}

// The text behind the header, of the length given there. False when the length is impossible.
bool CopyText(const BYTE* board, DWORD size, wchar_t* text)
{
    if (size < sizeof(wchar_t) || size % sizeof(wchar_t) != 0 || size > kTextCapacity * sizeof(wchar_t))
    {
        return false;
    }
    std::memcpy(text, board + sizeof(IpbDataHeader), size);
    return text[size / sizeof(wchar_t) - 1] == 0;
}

} // namespace

bool Boards::Create()
{
    // Callers open the result board first: when that succeeds, the other one must be there.
    return m_parameters.Reset(kParameters, kSize, 1, kInstance) == 0 &&
           m_results.Reset(kResults, kSize, 1, kInstance) == 0;
}

bool Boards::Take(Request& request)
{
    request = {};
    // Reset before reading: a request that arrives meanwhile rings again.
    static_cast<void>(m_parameters.Flag(1));

    BYTE board[kSize];
    if (!Retry([&] { return m_parameters.Read(0, board, sizeof board); }))
    {
        return false;
    }
    IpbDataHeader header{};
    std::memcpy(&header, board, sizeof header);
    request.code = header.code;
    request.value = header.value;
    request.wellFormed = CopyText(board, header.size, request.text);
    request.text[kTextCapacity] = 0;
    return true;
}

bool Boards::Give(const Answer& answer)
{
    IpbDataHeader header{answer.code, answer.value, 0};
    return Retry([&] { return m_results.Paste(0, &header, sizeof header); }) && m_results.Flag(0) != 0;
}

} // namespace service
