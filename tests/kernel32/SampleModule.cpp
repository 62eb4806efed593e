// kernel32/SampleModule.cpp
//
// A DLL that reports each step of its life to the debugger channel, and does what its caller asks.

#include "kernel32/SampleModule.h"

namespace
{

/// Lives as long as the library is loaded.
class Resident
{
public:
    Resident()
    {
        OutputDebugStringA("constructor");
    }
    ~Resident()
    {
        OutputDebugStringA("destructor");
    }
    Resident(const Resident&) = delete;
    Resident& operator=(const Resident&) = delete;
};

const Resident kResident;

DWORD WINAPI LeaveWithModule(LPVOID go)
{
    WaitForSingleObject(go, INFINITE);
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&LeaveWithModule), &module);
    FreeLibraryAndExitThread(module, kLeaveCode);
}

} // namespace

// One instance for all translation units: a symbol that the native loader would keep unique in the process,
// and the library with it.
inline int attachments = 0;

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_DETACH)
    {
        OutputDebugStringA("detach");
        return TRUE;
    }
    ++attachments;
    OutputDebugStringA("attach");
    const HANDLE refusal = OpenEventW(SYNCHRONIZE, FALSE, kRefusal);
    return refusal == nullptr || !CloseHandle(refusal);
}

SIM_API HANDLE SampleStart(HANDLE go)
{
    HMODULE module = nullptr;
    const bool held = GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                                         reinterpret_cast<LPCWSTR>(&SampleStart), &module) != FALSE;
    return held ? CreateThread(nullptr, 0, &LeaveWithModule, go, 0, nullptr) : nullptr;
}
