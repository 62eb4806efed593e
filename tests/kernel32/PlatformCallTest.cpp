// tests/kernel32/PlatformCallTest.cpp
//
// What all tests of the plug-in trust: its calls, and no others, are traced, refused and counted.

#include "base/Trace.h"
#include "kernel32/OwnedHandle.h"
#include "support/NotebookTest.h"

#include <objbase.h>

namespace
{

using namespace simulated;

class PlatformCallTest : public NotebookTest
{
protected:
    // Makes the test's own calls the plug-in's.
    void SetUp() override
    {
        NotebookTest::SetUp();
        SetPlugInRange(nullptr, reinterpret_cast<const void*>(~std::uintptr_t{0}));
    }
    void TearDown() override
    {
        SetPlugInRange(nullptr, nullptr);
        NotebookTest::TearDown();
    }
};

TEST_F(PlatformCallTest, ThePlugInsCallsAreTracedRefusedAndCounted)
{
    Faults::Inject("CreateEventW", 2, ERROR_GEN_FAILURE);
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, L"Mine");
    EXPECT_FALSE(Faults::AllHit());
    EXPECT_EQ(nullptr, CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(DWORD{ERROR_GEN_FAILURE}, GetLastError());
    EXPECT_TRUE(Faults::AllHit());
    const std::vector<TracedCall> calls = Trace::CallsOf("CreateEventW");
    ASSERT_EQ(2U, calls.size());
    EXPECT_EQ("1, 0, \"Mine\"", calls[0].arguments);
    EXPECT_TRUE(calls[0].succeeded && !calls[1].succeeded);
    EXPECT_EQ(2U, Trace::Count(CallClass::Object));

    SetPlugInRange(nullptr, nullptr);
    const OwnedHandle other(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(2U, Trace::Calls().size());
    EXPECT_EQ(1U, Leaks::Count());
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
}

// A kind of thing that isn't counted would hide every leak of it.
TEST_F(PlatformCallTest, EachKindOfThingIsCounted)
{
    void* const block = HeapAlloc(GetProcessHeap(), 0, 10);
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    CLSID classId = {};
    void* object = nullptr;
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"Pixlink.PanelBridge", &classId));
    ASSERT_EQ(S_OK, CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key));
    EXPECT_EQ(4U, Leaks::Count()) << Leaks::Describe();
    RegCloseKey(key);
    static_cast<IUnknown*>(object)->Release();
    CoUninitialize();
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
}

} // namespace
