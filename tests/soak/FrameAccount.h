#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <ZqApi/ZqApi.h>

#include "tests/soak/Faults.h"
#include "tests/soak/Totals.h"

namespace ZqSoak {

/// What an acquisition is to deliver.
struct Expectation {
    Faults faults;
    bool chunks = false;
    bool ascending = true; ///< one thread takes the frames
};

/// The frames of one acquisition as they are handed out, each compared with what its id says it must be. Any
/// thread.
class FrameAccount {
public:
    explicit FrameAccount(const Expectation& expected) : m_Expected(expected) {}

    void Take(ZqApi::IZqStreamBuffer& buffer);

    /// What camera and stream say at the end of an acquisition.
    struct Counts {
        uint64_t made;
        uint64_t underrun;
        uint64_t delivered; ///< by the producer
        size_t buffers;
        bool givesUp; ///< a filled buffer may be given up for a newer frame; it was delivered and is underrun
        bool killed;  ///< the stop may have cut one frame off
    };

    /// Once the camera has stopped and nothing waits any more: every frame was handed out, dropped on
    /// purpose, lost for want of a buffer, or delivered so late that the stop left it with the producer.
    Totals Settle(const Counts& counts);
    /// After a loss: what the stream had begun was delivered, given up for a newer frame (as many as
    /// `givenUp` at most), or went with the camera in one of its buffers.
    Totals SettleLoss(uint64_t begun, uint64_t givenUp, size_t buffers);

    std::vector<std::string> Complaints() const;

private:
    void Complain(const std::string& text);
    void CheckCompleteness(const ZqApi::IZqStreamBufferInfo& info, uint64_t id);
    void CheckPicture(ZqApi::IZqStreamBuffer& buffer, uint64_t id);
    void CheckLeftBehind(const Counts& counts, uint64_t explained);
    void CheckChunks(ZqApi::IZqStreamBuffer& buffer, uint64_t id);

    const Expectation m_Expected;
    mutable std::mutex m_Lock;
    std::vector<uint64_t> m_Ids;
    uint64_t m_Incomplete = 0;
    uint64_t m_CutOff = 0;
    std::vector<std::string> m_Complaints;
};

} // namespace ZqSoak
