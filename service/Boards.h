// service/Boards.h
//
// The serving side of the two boards: one request at a time comes in on the parameter board, its answer goes
// out on the result board. Knows the layout of a request; Requests.h knows what it asks for.
#pragma once

#include "foundation/ServiceBoards.h"

#include <windows.h>

namespace service
{

using service_boards::kTextCapacity;

/// A request as it was found on the board.
struct Request
{
    DWORD code = 0;
    DWORD value = 0;
    wchar_t text[kTextCapacity + 1] = {}; ///< always terminated
    bool wellFormed = false;              ///< the size fits the board and the text ends within it
};

/// `code` is `service_boards::kDone`, or another number for a failure notice.
struct Answer
{
    DWORD code;
    DWORD value;
};

/// A board whose doorbell can be waited for together with other things.
class ServedBoard : public CInterProcessBoard
{
public:
    HANDLE Doorbell() const noexcept
    {
        return m_hEvent;
    }
};

class Boards
{
public:
    /// Creates both boards; false with the system's last error.
    bool Create();

    /// The event that a request signals.
    HANDLE Doorbell() const noexcept
    {
        return m_parameters.Doorbell();
    }

    /// Takes the request off the parameter board; false when the board can't be read.
    bool Take(Request& request);

    /// Puts the answer on the result board and rings; false when the board can't be written.
    bool Give(const Answer& answer);

private:
    ServedBoard m_parameters;
    ServedBoard m_results;
};

} // namespace service
