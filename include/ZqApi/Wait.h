#pragma once

#include <cstdint>

#include <ZqApi/Export.h>

namespace ZqApi {

/// Result of a wait: the event is signalled; a wait for several adds the index of the lowest signalled one.
constexpr uint32_t WAIT_OBJECT_0 = 0;
/// Result of a wait: the time-out elapsed first. An array of more than 258 handles can't tell this from
/// handle 258.
constexpr uint32_t WAIT_TIMEOUT = 0x102;
/// Result of a wait: null handle, empty array, or the system refused to wait for a signalled event.
constexpr uint32_t WAIT_FAILED = 0xFFFFFFFF;
/// Time-out that never elapses.
constexpr uint32_t INFINITE = 0xFFFFFFFF;

/// Waits for one event up to `milliseconds` (0: only tests) and takes its signal if it resets itself.
///
/// Needs no initialisation of the library, may be called from any thread and throws nothing. An event wakes
/// one such waiter per signal, so two threads should not wait on the same manual-reset event with it. A
/// signal that arrives at the very start of a wait may be noticed only when the time-out ends, which then
/// reports WAIT_TIMEOUT; WaitForMultipleObjects does not miss any. Time-outs follow the system's real-time
/// clock.
ZQAPI_API uint32_t WaitForSingleObject(void* handle, unsigned int milliseconds);

/// Waits until one of `count` events (with `waitAll`: every one) is signalled, up to `milliseconds`.
///
/// Takes the signal of every self-resetting event found signalled, not only of the one reported; a blocking
/// wait does so even when it reports WAIT_TIMEOUT. A test (0 ms) for all that another thread is faster with
/// puts back what it took, so an event may look unset to a third thread for that moment. A wait that loses
/// its signal to another thread reports WAIT_TIMEOUT early, with INFINITE too. A null handle counts as an
/// event that is never signalled. Any thread, no initialisation needed. Throws GenICam::BadAllocException,
/// without text, when the system is out of resources; never for up to eight handles otherwise.
ZQAPI_API uint32_t WaitForMultipleObjects(unsigned int count, void* const* handles, bool waitAll,
                                          unsigned int milliseconds);

} // namespace ZqApi
