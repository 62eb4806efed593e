// foundation/ServiceCall.cpp
//
// One request to the service in another process: out over one board, the answer back over another. The
// service creates both; what it does with a request is up to the service.

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"
#include "foundation/Results.h"
#include "foundation/ServiceBoards.h"
#include "foundation/Text.h"

namespace
{

using namespace service_boards;

constexpr LONG kHeaderSize = sizeof(IpbDataHeader);

// Puts the request on the parameter board and rings. False, with the reason logged, when a step fails.
bool SendRequest(CInterProcessBoard& parameters, CInterProcessBoard& results, IpbDataHeader header,
                 const wchar_t* text) noexcept
{
    // A board takes what it writes from untyped memory that it doesn't change. The answer's event is reset
    // before the request goes out, so that an old answer can't be taken for this one.
    return Check(parameters.Paste(0, &header, kHeaderSize) == kSucceeded,
                 L"Paste data header to outbound board failed in CDevMgr.\n") &&
           Check(parameters.Paste(kHeaderSize, const_cast<wchar_t*>(text), static_cast<LONG>(header.size)) ==
                     kSucceeded,
                 L"Paste data to outbound board failed in CDevMgr.\n") &&
           Check(results.Flag(1) != 0, L"Reset inbound board event failed in CDevMgr\n") &&
           Check(parameters.Flag(0) != 0, L"Set outbound board event failed in CDevMgr\n");
}

// Waits for the answer and reads its header. False, with the reason logged, when there is no good one.
bool ReceiveAnswer(CInterProcessBoard& results, IpbDataHeader& header, ULONG timeout) noexcept
{
    return Check(results.IsDataAvailble(timeout) != 0, L"Waiting inbound board data timeout.\n") &&
           Check(results.Read(0, &header, kHeaderSize) == kSucceeded,
                 L"Reading data header failed in CDevMgr\n") &&
           Check(header.code == kDone, L"A failure notice received in CDevMgr\n");
}

} // namespace

LONG CORVLBase::ServiceCall(unsigned int code, const wchar_t* text, ULONG value, IpbDataHeader*,
                            ULONG timeout) noexcept
{
    const wchar_t* const sent = text == nullptr ? L"" : text;
    const std::size_t length = text::Length(sent, kTextCapacity);
    if (length == kTextCapacity)
    {
        DBGOUT(L"Data too long for outbound board in CDevMgr.\n");
        return kGeneralFailure;
    }
    const IpbDataHeader request{code, value, static_cast<DWORD>((length + 1) * sizeof(wchar_t))};

    CInterProcessBoard results;
    if (const LONG opened = results.Reset(kResults, kSize, 0, kInstance); opened != kSucceeded)
    {
        DBGOUT(L"Failed in open IPB board for results with %X.", opened);
        return kGeneralFailure;
    }
    CInterProcessBoard parameters;
    if (const LONG opened = parameters.Reset(kParameters, kSize, 0, kInstance); opened != kSucceeded)
    {
        DBGOUT(L"Failed in open IPB board for parameters with %X.", opened);
        return kGeneralFailure;
    }

    IpbDataHeader answer{};
    if (!SendRequest(parameters, results, request, sent) || !ReceiveAnswer(results, answer, timeout))
    {
        return kGeneralFailure;
    }
    DBGOUT(L"CDevMgr::DoStateChangeRemote got result %x\n", answer.value);
    return static_cast<LONG>(answer.value);
}
