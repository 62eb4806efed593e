// modules/kernel32/Memory.cpp
//
// The process heap and local memory, both the native heap. What the plug-in holds of either is counted.
//
// Known differences from Windows: there is one heap; local memory is always fixed; a block that was never
// handed out isn't refused but left to the native heap, which ends the process.

#include "base/Trace.h"
#include "modules/kernel32/LocalMemory.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace simulated
{

namespace
{

constexpr const char* kHeapKind = "block";
constexpr const char* kLocalKind = "local memory";

HANDLE ProcessHeap() noexcept
{
    static char heap;
    return &heap;
}

// Fills fresh memory that wasn't requested as zeros; a caller that relies on zeros must notice.
constexpr int kFreshByte = 0xCD;

void* Allocate(const char* kind, std::size_t size, bool zero, const PlatformCall& call)
{
    // A block of zero bytes is a block, too.
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
    {
        return nullptr;
    }
    std::memset(block, zero ? 0 : kFreshByte, size);
    if (call.IsObserved())
    {
        Leaks::Opened(kind, block, call.Function());
    }
    return block;
}

void Free(const char* kind, void* block)
{
    Leaks::Closed(kind, block);
    std::free(block);
}

Outcome<void*> Answer(void* block)
{
    return {block, static_cast<DWORD>(block == nullptr ? ERROR_NOT_ENOUGH_MEMORY : ERROR_SUCCESS)};
}

} // namespace

void* AllocateLocal(std::size_t size, const PlatformCall& call)
{
    return Allocate(kLocalKind, size, true, call);
}

void FreeLocal(void* block)
{
    if (block != nullptr)
    {
        Free(kLocalKind, block);
    }
}

} // namespace simulated

using namespace simulated;

// Not traced: it only names the heap.
SIM_API HANDLE WINAPI GetProcessHeap()
{
    return ProcessHeap();
}

// Leaves the last error alone, also when it fails.
SIM_API LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size)
{
    PlatformCall call(CallClass::Memory, "HeapAlloc", SIM_CALLER);
    call.Arguments(flags, size);
    const DWORD lastError = GetLastError();
    void* const block =
        call.Result<void*>(nullptr,
                           [&]() -> Outcome<void*>
                           {
                               if (heap != ProcessHeap() || (flags & ~DWORD{HEAP_ZERO_MEMORY}) != 0)
                               {
                                   return {nullptr, ERROR_INVALID_PARAMETER};
                               }
                               const bool zero = (flags & HEAP_ZERO_MEMORY) != 0;
                               return Answer(Allocate(kHeapKind, size, zero, call));
                           });
    SetLastError(lastError);
    return block;
}

SIM_API BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block)
{
    PlatformCall call(CallClass::Memory, "HeapFree", SIM_CALLER);
    call.Arguments(block);
    return call.Release(
        [&]() -> DWORD
        {
            if (heap != ProcessHeap() || flags != 0)
            {
                return ERROR_INVALID_PARAMETER;
            }
            if (block != nullptr)
            {
                Free(kHeapKind, block);
            }
            return ERROR_SUCCESS;
        });
}

// Null for success, so a fault, which gives the block back, still frees it.
SIM_API HLOCAL WINAPI LocalFree(HLOCAL block)
{
    PlatformCall call(CallClass::Memory, "LocalFree", SIM_CALLER);
    call.Arguments(block);
    void* const answer = call.Result<void*>(block, [] { return Outcome<void*>{}; });
    FreeLocal(block);
    return answer; // NOLINT(clang-analyzer-unix.Malloc): a number to compare with, as on Windows
}
