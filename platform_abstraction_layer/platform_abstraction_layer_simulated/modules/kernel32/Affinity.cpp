// modules/kernel32/Affinity.cpp
//
// The cores of the machine, the process's share of them, and the pseudo handle of the process.

#include "modules/kernel32/Affinity.h"

#include "base/PlatformCall.h"
#include "machine/Machine.h"

#include <windows.h>

#include <algorithm>

namespace simulated
{

namespace
{

constexpr const char* kProcessorSection = "Processor";
constexpr unsigned kDefaultCores = 4;
constexpr unsigned kMostCores = 32;

} // namespace

unsigned CoreCount()
{
    const std::uint64_t cores = Machine::ReadNumber(kProcessorSection, "Cores", kDefaultCores);
    return static_cast<unsigned>(std::clamp<std::uint64_t>(cores, 1, kMostCores));
}

DWORD_PTR SystemMask()
{
    return static_cast<DWORD_PTR>((std::uint64_t{1} << CoreCount()) - 1);
}

DWORD_PTR ProcessMask()
{
    const DWORD_PTR all = SystemMask();
    const auto share =
        static_cast<DWORD_PTR>(Machine::ReadNumber(kProcessorSection, "ProcessMask", all)) & all;
    return share == 0 ? all : share;
}

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(LONG_PTR{-1});
}

SIM_API BOOL WINAPI GetProcessAffinityMask(HANDLE process, PDWORD_PTR processMask, PDWORD_PTR systemMask)
{
    PlatformCall call(CallClass::Thread, "GetProcessAffinityMask", SIM_CALLER);
    call.Arguments(process);
    return call.Boolean(
        [&]() -> DWORD
        {
            if (process != GetCurrentProcess())
            {
                return ERROR_INVALID_HANDLE;
            }
            if (processMask == nullptr || systemMask == nullptr)
            {
                return ERROR_NOACCESS;
            }
            *processMask = ProcessMask();
            *systemMask = SystemMask();
            return ERROR_SUCCESS;
        });
}
