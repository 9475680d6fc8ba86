#include "tests/support/AllocationFailure.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Plain counters: code that allocates runs before and after every other static object.
std::atomic<uint64_t> allocations{0};
std::atomic<uint64_t> live{0};
std::atomic<uint64_t> untilFailure{0};
std::atomic<bool> hasFailed{false};
std::atomic<size_t> limit{SIZE_MAX};
thread_local uint64_t allocationsOfThread = 0;
thread_local uint64_t untilFailureOfThread = 0;
thread_local bool isSpared = false;
thread_local int pauses = 0;

bool MustFail(size_t size) {
    if (pauses > 0)
        return false;
    ++allocations;
    ++allocationsOfThread;
    if (size > limit.load())
        return true;
    bool fails = untilFailureOfThread != 0 && --untilFailureOfThread == 0;
    uint64_t left = isSpared ? 0 : untilFailure.load();
    while (left != 0 && !untilFailure.compare_exchange_weak(left, left - 1)) {
    }
    fails = fails || left == 1;
    if (fails)
        hasFailed = true;
    return fails;
}

void* Allocate(size_t size, size_t alignment) noexcept {
    if (MustFail(size))
        return nullptr;
    void* memory = nullptr;
    if (alignment <= alignof(std::max_align_t))
        memory = std::malloc(size == 0 ? 1 : size);
    else if (posix_memalign(&memory, alignment, size == 0 ? 1 : size) != 0)
        memory = nullptr;
    if (memory != nullptr)
        ++live;
    return memory;
}

void Free(void* memory) noexcept {
    if (memory == nullptr)
        return;
    --live;
    std::free(memory);
}

void* AllocateOrThrow(size_t size, size_t alignment) {
    void* memory = Allocate(size, alignment);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

constexpr size_t usual = alignof(std::max_align_t);

} // namespace

namespace ZqTest {

FailingAllocation::FailingAllocation(uint64_t n, Threads threads) {
    hasFailed = false;
    if (threads == Threads::This)
        untilFailureOfThread = n;
    else
        untilFailure = n;
    isSpared = threads == Threads::Others;
}

FailingAllocation::~FailingAllocation() {
    isSpared = false;
    untilFailureOfThread = 0;
    untilFailure = 0;
}

bool FailingAllocation::Failed() const {
    return hasFailed;
}

SparedAllocations::SparedAllocations() {
    ++pauses;
}

SparedAllocations::~SparedAllocations() {
    --pauses;
}

AllocationLimit::AllocationLimit(size_t bytes) {
    limit = bytes;
}

AllocationLimit::~AllocationLimit() {
    limit = SIZE_MAX;
}

uint64_t AllocationCount() {
    return allocations;
}

uint64_t LiveAllocations() {
    return live;
}

uint64_t AllocationCountOfThisThread() {
    return allocationsOfThread;
}

} // namespace ZqTest

void* operator new(size_t size) {
    return AllocateOrThrow(size, usual);
}

void* operator new[](size_t size) {
    return AllocateOrThrow(size, usual);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size, usual);
}

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size, usual);
}

void* operator new(size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<size_t>(alignment));
}

void* operator new[](size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<size_t>(alignment));
}

void operator delete(void* memory) noexcept {
    Free(memory);
}

void operator delete[](void* memory) noexcept {
    Free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    Free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    Free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    Free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    Free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    Free(memory);
}

void operator delete[](void* memory, std::align_val_t) noexcept {
    Free(memory);
}

void operator delete(void* memory, size_t, std::align_val_t) noexcept {
    Free(memory);
}

void operator delete[](void* memory, size_t, std::align_val_t) noexcept {
    Free(memory);
}
