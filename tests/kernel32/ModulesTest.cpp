// kernel32/ModulesTest.cpp
//
// Modules of the system and of the process: what can be missing, how a DLL comes and goes, and that the end
// of a thread doesn't need the DLL that it was started by.

#include "kernel32/Modules.h"
#include "kernel32/OwnedHandle.h"
#include "kernel32/SampleModule.h"
#include "notebook/DebugOutput.h"
#include "notebook/Machine.h"
#include "notebook/Text.h"
#include "notebook/Trace.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"

#include <gmock/gmock.h>

#include <tuple>

namespace
{

using simulated::DebugOutput;
using simulated::Machine;
using testing::ElementsAre;

void SomeFunction()
{
}

const simulated::modules::Export kExports[] = {
    {"OldFunction", 7, simulated::modules::Address(&SomeFunction)},
    {"NewFunction", 0, simulated::modules::Address(&SomeFunction), 6},
    {nullptr, 270, simulated::modules::Address(&SomeFunction)}};
const simulated::modules::Registration kPresent("Sample.dll", kExports);
const simulated::modules::Registration kNewer("SampleNewer.dll", kExports, 6);

class ModulesTest : public NotebookTest
{
protected:
    static std::string PathOf(HMODULE module)
    {
        wchar_t path[MAX_PATH];
        const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
        return simulated::ToUtf8(path, length);
    }
};

} // namespace

TEST_F(ModulesTest, MachineTakesModulesAndEntriesAway)
{
    // What machine.ini takes away, what is asked for, and the system's major version.
    const std::tuple<const char*, LPCWSTR, LPCSTR, DWORD, long> cases[] = {
        {"", L"Sample.dll", "OldFunction", 5, ERROR_SUCCESS},
        {"", L"SAMPLE", "OldFunction", 5, ERROR_SUCCESS},
        {"", L"C:\\Windows\\System32\\sample.DLL", "OldFunction", 5, ERROR_SUCCESS},
        {"", L"Sample.dll", MAKEINTRESOURCEA(7), 5, ERROR_SUCCESS},
        {"", L"Sample.dll", MAKEINTRESOURCEA(270), 5, ERROR_SUCCESS},
        {"", L"Sample.dll", MAKEINTRESOURCEA(0), 5, ERROR_PROC_NOT_FOUND},
        {"", L"Sample.dll", "oldfunction", 5, ERROR_PROC_NOT_FOUND},
        {"", L"Sample.dll", "NewFunction", 5, ERROR_PROC_NOT_FOUND},
        {"", L"Sample.dll", "NewFunction", 6, ERROR_SUCCESS},
        {"", L"SampleNewer.dll", "OldFunction", 5, ERROR_MOD_NOT_FOUND},
        {"", L"SampleNewer.dll", "OldFunction", 10, ERROR_SUCCESS},
        {"sample.dll", L"Sample.dll", "OldFunction", 5, ERROR_MOD_NOT_FOUND},
        {"Sample.dll.OldFunction", L"Sample.dll", "OldFunction", 5, ERROR_PROC_NOT_FOUND},
        {"Sample.dll.270", L"Sample.dll", MAKEINTRESOURCEA(270), 5, ERROR_PROC_NOT_FOUND},
        {"Sample.dll.270", L"Sample.dll", "OldFunction", 5, ERROR_SUCCESS},
        {"", L"C:\\Sample.dll", "OldFunction", 5, ERROR_MOD_NOT_FOUND},
        {"", L"Nowhere.dll", "OldFunction", 5, ERROR_MOD_NOT_FOUND},
        {"", L"", "OldFunction", 5, ERROR_INVALID_PARAMETER},
    };
    for (const auto& [absent, name, entry, major, error] : cases)
    {
        Machine::WriteNumber("Machine", "Major", major);
        Machine::Write("Modules", absent, "absent");
        const HMODULE module = LoadLibraryW(name);
        const FARPROC found = module == nullptr ? nullptr : GetProcAddress(module, entry);
        EXPECT_EQ(error, ErrorOf(found != nullptr)) << absent << ", " << simulated::ToUtf8(name);
        EXPECT_TRUE(module == nullptr || FreeLibrary(module));
        Machine::Remove("Modules");
    }
}

TEST_F(ModulesTest, PathsAreThoseOfWindows)
{
    EXPECT_EQ("C:\\WINDOWS\\system32\\Sample.dll", PathOf(GetModuleHandleW(L"Sample.dll")));
    EXPECT_EQ("C:\\Program Files\\Kelvo\\ORVL\\kernel_objects_tests.exe", PathOf(nullptr));
    Machine::Write("Modules", "ORVLDLL.DLL", "C:\\ORVL\\Bin\\ORVLDLL.DLL");
    const HMODULE added = GetModuleHandleW(L"ORVLDLL.DLL");
    EXPECT_EQ("C:\\ORVL\\Bin\\ORVLDLL.DLL", PathOf(added));
    EXPECT_EQ(nullptr, GetProcAddress(added, "OldFunction"));

    wchar_t cut[5] = {L'#', L'#', L'#', L'#', L'#'};
    EXPECT_EQ(4u, GetModuleFileNameW(added, cut, 4));
    EXPECT_EQ("C:\\O#", simulated::ToUtf8(cut, 5));
    Machine::WriteNumber("Machine", "Major", 6);
    EXPECT_EQ(4u, GetModuleFileNameW(added, cut, 4));
    EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, GetLastError());
    EXPECT_EQ(0, cut[3]);
}

TEST_F(ModulesTest, DllIsStartedAndEndedAroundItsStaticObjects)
{
    const HMODULE module = LoadLibraryW(L"sample_module.dll");
    ASSERT_NE(nullptr, module) << DebugOutput::Texts().back();
    EXPECT_EQ(module, LoadLibraryW(L"C:\\Program Files\\Kelvo\\ORVL\\sample_module.dll"));
    EXPECT_EQ("C:\\Program Files\\Kelvo\\ORVL\\sample_module.dll", PathOf(module));
    EXPECT_EQ(nullptr, GetProcAddress(module, "malloc"));
    EXPECT_EQ(nullptr, GetProcAddress(module, MAKEINTRESOURCEA(1)));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_THAT(DebugOutput::Texts(), ElementsAre("constructor", "attach"));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_THAT(DebugOutput::Texts(), ElementsAre("constructor", "attach", "detach", "destructor"));
    EXPECT_EQ(nullptr, GetModuleHandleW(L"sample_module.dll"));
    EXPECT_FALSE(FreeLibrary(module));
}

TEST_F(ModulesTest, DllThatRefusesIsNotLoaded)
{
    {
        const OwnedHandle refusal(CreateEventW(nullptr, TRUE, FALSE, kRefusal));
        EXPECT_EQ(ERROR_DLL_INIT_FAILED, ErrorOf(LoadLibraryW(L"sample_module.dll") != nullptr));
    }
    const HMODULE module = LoadLibraryW(L"sample_module.dll");
    EXPECT_NE(nullptr, module);
    EXPECT_TRUE(FreeLibrary(module));
}

TEST_F(ModulesTest, ThreadEndsAfterItsModuleIsGone)
{
    for (int round = 0; round < 50; ++round)
    {
        const OwnedHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        const HMODULE module = LoadLibraryW(L"sample_module.dll");
        const auto start = reinterpret_cast<void (*)()>(GetProcAddress(module, "SampleStart"));
        const OwnedHandle thread(reinterpret_cast<SampleStartFunction>(start)(go.get()));
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_NE(nullptr, GetModuleHandleW(L"sample_module.dll"));
        SetEvent(go.get());
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.get(), INFINITE));
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
        EXPECT_EQ(kLeaveCode, code);
        EXPECT_EQ(nullptr, GetModuleHandleW(L"sample_module.dll"));
        EXPECT_EQ(1u, simulated::Leaks::Count()) << "the handle was the module's";
        simulated::Leaks::Forget();
    }
}
