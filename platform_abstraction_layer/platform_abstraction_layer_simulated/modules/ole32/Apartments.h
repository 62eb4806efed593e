// modules/ole32/Apartments.h
//
// Whether the calling thread may use COM.
#pragma once

namespace simulated
{

/// True when the thread has initialised COM, or when another thread of the process keeps the multithreaded
/// apartment alive.
bool IsInApartment();

} // namespace simulated
