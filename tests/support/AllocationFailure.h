#pragma once

#include <cstddef>
#include <cstdint>

/// Linking zq_allocation_failure into a test binary replaces its global operator new and delete with ones
/// that count, and that can be told to fail. They serve libZqApi, libzqgenapi and the C++ runtime alike;
/// malloc and the scripted producer are not affected.
namespace ZqTest {

enum class Threads { This, Any, Others };

/// While it lives, the n-th allocation from its construction on throws std::bad_alloc (1: the next one), or
/// gives null from the nothrow forms. Only that one fails. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(uint64_t n, Threads threads = Threads::This);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// True once the allocation has failed.
    [[nodiscard]] bool Failed() const;
};

/// While it lives, allocations of this thread neither fail nor count: a test's own ones between those that it
/// is about.
class SparedAllocations {
public:
    SparedAllocations();
    SparedAllocations(const SparedAllocations&) = delete;
    SparedAllocations& operator=(const SparedAllocations&) = delete;
    ~SparedAllocations();
};

/// While it lives, every allocation above that many bytes fails, on any thread.
class AllocationLimit {
public:
    explicit AllocationLimit(size_t bytes);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();
};

/// Allocations so far, on all threads and on the calling one.
uint64_t AllocationCount();
uint64_t AllocationCountOfThisThread();
/// Those that have not been given back.
uint64_t LiveAllocations();

} // namespace ZqTest
