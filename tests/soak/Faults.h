#pragma once

#include <cstdint>

#include "tests/soak/Chance.h"

namespace ZqSoak {

/// What a camera does wrong on purpose: each number n hits every n-th frame of an acquisition, 0 none.
struct Faults {
    int64_t dropEvery = 0;
    int64_t incompleteEvery = 0;
    int64_t largerEvery = 0;
    int64_t badChunksEvery = 0;
    int64_t lateEvery = 0;
    int64_t errorEvery = 0;

    static Faults Random(Chance& chance) {
        const auto every = [&chance](int64_t first, int64_t last) {
            return chance.OneIn(2) ? chance.Between(first, last) : 0;
        };
        return {every(2, 50), every(2, 50), every(2, 50), every(2, 50), every(20, 100), every(2, 50)};
    }

    static bool Hits(int64_t every, uint64_t frameId) {
        return every != 0 && (frameId + 1) % static_cast<uint64_t>(every) == 0;
    }

    /// How many of the first `frames` frames are hit.
    static uint64_t Count(int64_t every, uint64_t frames) {
        return every == 0 ? 0 : frames / static_cast<uint64_t>(every);
    }
};

} // namespace ZqSoak
