// tests/service/ServiceTest.cpp
//
// The service as the plug-in sees it: over the boards, in a process of its own. What it does when it refuses,
// stays silent or is slow is in tests/sessions.

#include "service/ServiceProcess.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "base/Clock.h"
#include "control/Adapters.h"
#include "control/RegistryEditor.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"
#include "machine/DeviceTree.h"

#include <cfgmgr32.h>
#include <setupapi.h>

#include <algorithm>
#include <thread>
#include <tuple>

namespace
{

using simulated::Adapters;
using simulated::DeviceTree;
using simulated::RegistryEditor;

constexpr ULONG kLongEnough = 10000;

class Caller : public CORVLBase
{
public:
    ULONG GetVersion() noexcept override
    {
        return kClassVersion;
    }
};

class ServiceTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        // Two processes agree on the time only in real time.
        simulated::Clock::SetInstant(false);
    }

    static LONG Call(unsigned code, const wchar_t* text, ULONG value, ULONG timeout = kLongEnough)
    {
        Caller caller;
        IpbDataHeader reply{};
        return caller.ServiceCall(code, text, value, &reply, timeout);
    }

    /// "CurrentPwrSchemeID", or -1 without one.
    static int StoredScheme()
    {
        const std::optional<DWORD> scheme =
            RegistryEditor::ReadNumber("HKLM\\Software\\Kelvo\\ORVA", "CurrentPwrSchemeID");
        return scheme ? static_cast<int>(*scheme) : -1;
    }
};

TEST_F(ServiceTest, AnAppliedSchemeIsStoredBeforeTheListenerIsWoken)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const owners::Handle listener(CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent"));
    int storedWhenWoken = -2;
    std::thread waiting(
        [&]
        {
            WaitForSingleObject(listener.Get(), kLongEnough);
            storedWhenWoken = StoredScheme();
        });
    EXPECT_EQ(0, Call(3, L"C:\\Cfg", 4));
    waiting.join();
    EXPECT_EQ(4, storedWhenWoken);
    EXPECT_TRUE(service.WaitFor("request 3 (scheme applied), value 4, text \"C:\\Cfg\""));
}

TEST_F(ServiceTest, ASchemeIsStoredWithoutAListenerToo)
{
    ServiceProcess service(Folder(), {"--verbose"});
    ASSERT_TRUE(service.IsServing());
    EXPECT_EQ(0, Call(3, L"", 17));
    EXPECT_EQ(17, StoredScheme());
    EXPECT_TRUE(service.WaitFor("no host waits"));
    // A request's text can't pass for the service's own lines.
    EXPECT_EQ(0, Call(3, L"a\r\nserving\n\x1B[2J\x7F\x9B\x00A0\x00E4 ~\\", 17));
    EXPECT_TRUE(service.WaitFor("text \"a\\x0D\\x0Aserving\\x0A\\x1B[2J\\x7F\\x9B\xA0\xE4 ~\\\""));
    EXPECT_TRUE(service.WaitFor("answered code 1, value 0x0"));
}

TEST_F(ServiceTest, ADeviceIsSwitchedByItsInstanceId)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const std::string adapter = Adapters::All().front();
    ASSERT_EQ(0u, DeviceTree::StateOf(adapter).problem);
    EXPECT_EQ(0, Call(2, Wide(adapter).data(), DICS_DISABLE));
    EXPECT_EQ(DWORD{CM_PROB_DISABLED}, DeviceTree::StateOf(adapter).problem);
    EXPECT_EQ(0, Call(2, Wide(adapter).data(), DICS_ENABLE));
    EXPECT_EQ(0u, DeviceTree::StateOf(adapter).problem);

    EXPECT_EQ(kGeneralFailure, Call(2, L"ROOT\\NOTHING\\0000", DICS_DISABLE));
    EXPECT_TRUE(service.WaitFor("device change gave 0x80004005"));
}

/// A request with the value 9 and any text on the board, past every check of the plug-in; the answer's
/// header.
IpbDataHeader Post(DWORD code, DWORD size, wchar_t fill)
{
    struct
    {
        IpbDataHeader header;
        wchar_t text[(1024 - sizeof(IpbDataHeader)) / sizeof(wchar_t)];
    } request = {{code, 9, size}, {}};
    std::fill(std::begin(request.text), std::end(request.text), fill);
    CInterProcessBoard parameters;
    CInterProcessBoard results;
    EXPECT_EQ(0, parameters.Reset(L"ORVL_IPB_PARA", 1024, 0, 0));
    EXPECT_EQ(0, results.Reset(L"ORVL_IPB_RSLT", 1024, 0, 0));
    EXPECT_EQ(0, parameters.Paste(0, &request, static_cast<LONG>(sizeof request)));
    EXPECT_NE(0, results.Flag(1));
    EXPECT_NE(0, parameters.Flag(0));
    EXPECT_EQ(1, results.IsDataAvailble(kLongEnough));
    IpbDataHeader answer{};
    EXPECT_EQ(0, results.Read(0, &answer, sizeof answer));
    return answer;
}

TEST_F(ServiceTest, MalformedRequestsGetAFailureNoticeAndHarmNothing)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const std::tuple<DWORD, DWORD, wchar_t, LONG> rows[] = {
        {3, 0, 0, kBadArgument},       {3, 3, 0, kBadArgument},  {3, 0xFFFFFFFF, 0, kBadArgument},
        {3, 1012, L'x', kBadArgument}, {4, 2, 0, kNotSupported},
    };
    for (const auto& [code, size, fill, reason] : rows)
    {
        const IpbDataHeader answer = Post(code, size, fill);
        EXPECT_EQ(0u, answer.code) << code << ", " << size;
        EXPECT_EQ(static_cast<DWORD>(reason), answer.value);
    }
    EXPECT_EQ(-1, StoredScheme());

    // The longest text that fits.
    EXPECT_EQ(1u, Post(3, 1012, 0).code);
    EXPECT_EQ(9, StoredScheme());
}

} // namespace
