// foundation/ServiceCall.cpp
//
// One request to the service in another process: out over one board, the answer back over another. The
// service creates both; what it does with a request is up to the service.

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
    if (parameters.Paste(0, &header, kHeaderSize) != kSucceeded)
    {
        CORVLBase::DBGOUT(L"Paste data header to outbound board failed in CDevMgr.\n");
        return false;
    }
    // A board takes what it writes from untyped memory that it doesn't change.
    if (parameters.Paste(kHeaderSize, const_cast<wchar_t*>(text), static_cast<LONG>(header.size)) !=
        kSucceeded)
    {
        CORVLBase::DBGOUT(L"Paste data to outbound board failed in CDevMgr.\n");
        return false;
    }
    // Before the request goes out, so that an old answer can't be taken for this one.
    if (results.Flag(1) == 0)
    {
        CORVLBase::DBGOUT(L"Reset inbound board event failed in CDevMgr\n");
        return false;
    }
    if (parameters.Flag(0) == 0)
    {
        CORVLBase::DBGOUT(L"Set outbound board event failed in CDevMgr\n");
        return false;
    }
    return true;
}

// Waits for the answer and reads its header. False, with the reason logged, when there is no good one.
bool ReceiveAnswer(CInterProcessBoard& results, IpbDataHeader& header, ULONG timeout) noexcept
{
    if (results.IsDataAvailble(timeout) == 0)
    {
        CORVLBase::DBGOUT(L"Waiting inbound board data timeout.\n");
        return false;
    }
    if (results.Read(0, &header, kHeaderSize) != kSucceeded)
    {
        CORVLBase::DBGOUT(L"Reading data header failed in CDevMgr\n");
        return false;
    }
    if (header.code != kDone)
    {
        CORVLBase::DBGOUT(L"A failure notice received in CDevMgr\n");
        return false;
    }
    return true;
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
