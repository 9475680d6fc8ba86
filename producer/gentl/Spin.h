#pragma once

#include <chrono>
#include <thread>

namespace zqgentl {

inline void RelaxProcessor() noexcept {
#if defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

/// Waits a moment without going to sleep; false when the moment has passed. Going to sleep and being woken
/// takes some ten times as long as a small frame, so with few buffers a camera and a host that hand them to
/// each other would sleep most of the time. The thread yields in between, for hosts with fewer processors
/// than threads.
template <class Ready>
bool SpinUntil(Ready ready) {
    using Clock = std::chrono::steady_clock;
    constexpr int checksPerYield = 32;
    constexpr std::chrono::microseconds moment(50);

    const Clock::time_point end = Clock::now() + moment;
    do {
        for (int check = 0; check < checksPerYield; ++check) {
            if (ready())
                return true;
            RelaxProcessor();
        }
        std::this_thread::yield();
    } while (Clock::now() < end);
    return false;
}

} // namespace zqgentl
