// base/PlugInModule.cpp
//
// The address range of the loaded plug-in.

#include "base/PlugInModule.h"

#include <atomic>
#include <cstdint>

namespace simulated
{

namespace
{

std::atomic<std::uintptr_t> rangeBegin{0};
std::atomic<std::uintptr_t> rangeEnd{0};

} // namespace

bool IsInPlugIn(const void* address) noexcept
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    return place >= rangeBegin && place < rangeEnd;
}

void SetPlugInRange(const void* begin, const void* end) noexcept
{
    rangeBegin = reinterpret_cast<std::uintptr_t>(begin);
    rangeEnd = reinterpret_cast<std::uintptr_t>(end);
}

} // namespace simulated
