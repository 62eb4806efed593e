// plugin/NotifyThread.h
//
// The plug-in's only thread of its own: it waits for the event "ApplySchemeEvent", which a party outside the
// plug-in signals, and tells the host of the applied scheme.
#pragma once

#include <windows.h>

class CPluginHelper;

/// The thread's function; the argument isn't used. Always 0.
DWORD WINAPI PMNotifyHandler(LPVOID argument) noexcept;

namespace notification
{

/// At load and unload of the library.
void SetUp() noexcept;
void TearDown() noexcept;

/// Creates event and thread and stores their handles in the context. True also when they are there already;
/// false, with nothing left behind, when one can't be created. A thread whose wait fails takes its handles
/// out of the context again, so that the next start makes a new one.
[[nodiscard]] bool Start(CPluginHelper& context) noexcept;

/// Asks the thread to end; the context's handles are null from now on. Returns when neither that thread nor
/// one of another start that is over runs any more. Called on such a thread, it waits for none: that thread
/// ends when its present call of the host returns. Another thread that can't be asked to end, because its
/// event can't be set, goes on, keeps its handles and isn't waited for.
void Stop(CPluginHelper& context) noexcept;

} // namespace notification
