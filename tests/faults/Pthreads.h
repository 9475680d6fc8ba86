#pragma once

#include <cstdint>

/// The test binary's own pthread_create and lock functions, which the library uses as well.
namespace ZqTest {

/// While it lives, the n-th pthread_create from its construction on fails with EAGAIN, on any thread.
class FailingThread {
public:
    explicit FailingThread(uint64_t n);
    FailingThread(const FailingThread&) = delete;
    FailingThread& operator=(const FailingThread&) = delete;
    ~FailingThread();

    [[nodiscard]] bool Failed() const;
};

/// Locks that the calling thread has taken and not given back.
int64_t HeldLocks();

} // namespace ZqTest
