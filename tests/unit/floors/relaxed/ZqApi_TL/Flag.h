#pragma once

#include <atomic>

inline bool IsSet(const std::atomic<bool>& flag) {
    return flag.load(std::memory_order_relaxed);
}
