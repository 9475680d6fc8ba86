#pragma once

#include <cstdint>

namespace ZqSoak {

/// What became of frames, and what else was done meanwhile.
struct Totals {
    uint64_t made = 0; ///< in acquisitions that were stopped, as the camera counts
    uint64_t delivered = 0;
    uint64_t incomplete = 0; ///< of those delivered
    uint64_t dropped = 0;    ///< sent by no camera, on purpose; a gap in the frame ids
    uint64_t underrun = 0;
    uint64_t leftBehind = 0;     ///< delivered by the producer, but ended with the stop before it was fetched
    uint64_t begun = 0;          ///< in acquisitions that a loss ended, as the stream counts
    uint64_t deliveredBegun = 0; ///< of those
    uint64_t lostWithCamera = 0; ///< of those, in a buffer when the camera went away
    uint64_t acquisitions = 0;
    uint64_t losses = 0;
    uint64_t featureAccesses = 0;
    uint64_t portErrors = 0;
    uint64_t saves = 0;
    uint64_t failures = 0;

    void Add(const Totals& other) {
        made += other.made;
        delivered += other.delivered;
        incomplete += other.incomplete;
        dropped += other.dropped;
        underrun += other.underrun;
        leftBehind += other.leftBehind;
        begun += other.begun;
        deliveredBegun += other.deliveredBegun;
        lostWithCamera += other.lostWithCamera;
        acquisitions += other.acquisitions;
        losses += other.losses;
        featureAccesses += other.featureAccesses;
        portErrors += other.portErrors;
        saves += other.saves;
        failures += other.failures;
    }
};

} // namespace ZqSoak
