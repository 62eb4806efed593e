// tests/kernel32/PlatformCallTest.cpp
//
// What all tests of the plug-in rely on: what it holds is counted, and nothing else is.

#include "base/Trace.h"
#include "kernel32/OwnedHandle.h"
#include "support/NotebookTest.h"

#include <objbase.h>

namespace
{

using namespace simulated;

using PlatformCallTest = NotebookTest;

// An uncounted kind of object would hide every leak of it.
TEST_F(PlatformCallTest, EachKindOfThingIsCounted)
{
    // Makes the test's own calls the plug-in's.
    SetPlugInRange(nullptr, reinterpret_cast<const void*>(~std::uintptr_t{0}));
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    void* const block = HeapAlloc(GetProcessHeap(), 0, 10);
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    CLSID classId = {};
    void* object = nullptr;
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"Pixlink.PanelBridge", &classId));
    ASSERT_EQ(S_OK, CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key));
    SetPlugInRange(nullptr, nullptr);
    const OwnedHandle other(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(5U, Leaks::Count()) << Leaks::Describe();
    RegCloseKey(key);
    static_cast<IUnknown*>(object)->Release();
    CoUninitialize();
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
}

} // namespace
