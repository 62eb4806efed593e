// ole32/ApartmentsTest.cpp
//
// When a thread may use COM.

#include "notebook/Graphics.h"
#include "notebook/PlugInModule.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

#include <objbase.h>

#include <thread>

namespace
{

using namespace simulated;
using ApartmentsTest = NotebookTest;

HRESULT Create(IUnknown** object, DWORD context = CLSCTX_SERVER)
{
    CLSID classId = {};
    EXPECT_EQ(S_OK, CLSIDFromProgID(L"pixlink.panelbridge", &classId));
    return CoCreateInstance(classId, nullptr, context, IID_IUnknown, reinterpret_cast<void**>(object));
}

HRESULT TryToCreate()
{
    IUnknown* object = nullptr;
    const HRESULT result = Create(&object);
    EXPECT_EQ(SUCCEEDED(result), object != nullptr);
    if (object != nullptr)
    {
        EXPECT_EQ(0U, object->Release());
    }
    return result;
}

} // namespace

TEST_F(ApartmentsTest, InitialisationsOfAThreadAreCounted)
{
    EXPECT_EQ(CO_E_NOTINITIALIZED, TryToCreate());
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    EXPECT_EQ(S_FALSE, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    EXPECT_EQ(RPC_E_CHANGED_MODE, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    CoUninitialize();
    EXPECT_EQ(S_OK, TryToCreate());
    CoUninitialize();
    EXPECT_EQ(CO_E_NOTINITIALIZED, TryToCreate());
    CoUninitialize(); // once too often
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    EXPECT_EQ(S_OK, TryToCreate());
    CoUninitialize();
    EXPECT_EQ(E_INVALIDARG, CoInitializeEx(nullptr, 0x100));
}

// A thread that hasn't initialised COM belongs to the multithreaded apartment when there is one.
TEST_F(ApartmentsTest, TheMultithreadedApartmentServesAllThreads)
{
    const auto tryOnAnotherThread = []
    {
        HRESULT result = E_FAIL;
        std::thread([&] { result = TryToCreate(); }).join();
        return result;
    };
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    EXPECT_EQ(CO_E_NOTINITIALIZED, tryOnAnotherThread());
    CoUninitialize();
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    EXPECT_EQ(S_OK, tryOnAnotherThread());
    CoUninitialize();
    // A thread that ends leaves the apartment.
    std::thread([] { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }).join();
    EXPECT_EQ(CO_E_NOTINITIALIZED, TryToCreate());
}

TEST_F(ApartmentsTest, WhatThePlugInDoesNotUndoCountsAsHeld)
{
    SetPlugInRange(nullptr, reinterpret_cast<const void*>(~std::uintptr_t{0}));
    CoInitializeEx(nullptr, 0);
    CoInitializeEx(nullptr, 0);
    EXPECT_EQ(2U, Leaks::Count());
    IUnknown* object = nullptr;
    ASSERT_EQ(S_OK, Create(&object));
    EXPECT_EQ(2U, object->AddRef());
    EXPECT_EQ(1U, object->Release());
    EXPECT_EQ(3U, Leaks::Count()) << Leaks::Describe();
    object->Release();
    EXPECT_EQ(2U, Leaks::Count());
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
    Faults::Inject("CoCreateInstance", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(E_ACCESSDENIED, Create(&object));
    SetPlugInRange(nullptr, nullptr);
}

TEST_F(ApartmentsTest, ClassesThatAreNotInstalledAreUnknown)
{
    CoInitializeEx(nullptr, 0);
    IUnknown* object = nullptr;
    EXPECT_EQ(REGDB_E_CLASSNOTREG, Create(&object, CLSCTX_LOCAL_SERVER));
    CLSID classId = {};
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"Pixlink.PanelBridge", &classId));
    Graphics::SetInstalled(false);
    EXPECT_EQ(REGDB_E_CLASSNOTREG, CoCreateInstance(classId, nullptr, CLSCTX_SERVER, IID_IUnknown,
                                                    reinterpret_cast<void**>(&object)));
    EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromProgID(L"Pixlink.PanelBridge", &classId));
    CoUninitialize();
}
