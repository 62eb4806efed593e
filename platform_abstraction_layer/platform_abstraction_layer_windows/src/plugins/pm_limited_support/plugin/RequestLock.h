// plugin/RequestLock.h
//
// The one lock under which requests run, one after the other. A thread that holds it may take it again, so a
// host can send a request from within `SendEvent`.
#pragma once

#include <windows.h>

namespace request_lock
{

/// At load and unload of the library.
void SetUp() noexcept;
void TearDown() noexcept;

/// Holds the lock for the length of a scope.
class Scope
{
public:
    Scope() noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
};

/// Releases the lock completely for the length of a scope when the calling thread holds it, however often it
/// took it, and takes it back as often afterwards.
class Pause
{
public:
    Pause() noexcept;
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

private:
    unsigned m_depth;
};

} // namespace request_lock
