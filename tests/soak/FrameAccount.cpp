#include "tests/soak/FrameAccount.h"

#include <algorithm>

namespace ZqSoak {
namespace {

using namespace ZqApi;

constexpr size_t STRIPES = 64;
constexpr size_t STRIPE_WIDTH = 8;

std::string FrameText(uint64_t id) {
    return "frame " + std::to_string(id);
}

} // namespace

void FrameAccount::Complain(const std::string& text) {
    m_Complaints.push_back(text);
}

void FrameAccount::Take(IZqStreamBuffer& buffer) {
    const IZqStreamBufferInfo& info = *buffer.GetIZqStreamBufferInfo();
    const uint64_t id = info.GetFrameID();
    const std::lock_guard<std::mutex> guard(m_Lock);
    if (m_Expected.ascending && !m_Ids.empty() && id <= m_Ids.back())
        Complain(FrameText(id) + " came behind " + std::to_string(m_Ids.back()));
    m_Ids.push_back(id);
    if (Faults::Hits(m_Expected.faults.dropEvery, id))
        Complain(FrameText(id) + " should never have been sent");
    CheckCompleteness(info, id);
    if (info.IsIncomplete())
        return;
    CheckPicture(buffer, id);
    if (m_Expected.chunks)
        CheckChunks(buffer, id);
}

void FrameAccount::CheckCompleteness(const IZqStreamBufferInfo& info, uint64_t id) {
    const bool larger = Faults::Hits(m_Expected.faults.largerEvery, id);
    const bool incomplete = larger || Faults::Hits(m_Expected.faults.incompleteEvery, id);
    if (info.IsIncomplete()) {
        ++m_Incomplete;
        m_CutOff += incomplete ? 0 : 1;
    } else if (incomplete) {
        Complain(FrameText(id) + " is complete");
    }
    if (info.IsIncomplete() && larger && info.GetSizeFilled() != 0 && !info.IsDataLargerThanBuffer())
        Complain(FrameText(id) + " claims no more than its buffer has room for");
}

// The test pattern shows the frame id, its lowest bit on the left.
void FrameAccount::CheckPicture(IZqStreamBuffer& buffer, uint64_t id) {
    IZqImage& image = *buffer.GetIZqImage();
    if (image.GetImageWidth() != STRIPES * STRIPE_WIDTH) {
        Complain(FrameText(id) + " is " + std::to_string(image.GetImageWidth()) + " pixels wide");
        return;
    }
    const size_t lastLine = (image.GetImageHeight() - 1) * image.GetImageLinePitch();
    const auto* const pixels = static_cast<const uint8_t*>(image.GetImageBuffer()) + lastLine;
    uint64_t shown = 0;
    for (size_t bit = 0; bit < STRIPES; ++bit)
        shown |= static_cast<uint64_t>(pixels[bit * STRIPE_WIDTH] != 0) << bit;
    if (shown != id)
        Complain(FrameText(id) + " shows frame " + std::to_string(shown));
}

void FrameAccount::CheckChunks(IZqStreamBuffer& buffer, uint64_t id) {
    const GenApi::CIntegerPtr chunk = buffer.GetChunkINodeMap()->GetNode("ChunkFrameID");
    if (!chunk.IsValid() || !GenApi::IsReadable(chunk)) {
        if (!Faults::Hits(m_Expected.faults.badChunksEvery, id))
            Complain(FrameText(id) + " has no chunk with its id");
        return;
    }
    if (chunk->GetValue() != static_cast<int64_t>(id))
        Complain(FrameText(id) + " has the chunk of frame " + std::to_string(chunk->GetValue()));
}

std::vector<std::string> FrameAccount::Complaints() const {
    const std::lock_guard<std::mutex> guard(m_Lock);
    return m_Complaints;
}

Totals FrameAccount::Settle(const Counts& counts) {
    const std::lock_guard<std::mutex> guard(m_Lock);
    Totals totals;
    totals.made = counts.made;
    totals.delivered = m_Ids.size();
    totals.incomplete = m_Incomplete;
    totals.dropped = Faults::Count(m_Expected.faults.dropEvery, counts.made);
    totals.underrun = counts.underrun;
    std::sort(m_Ids.begin(), m_Ids.end());
    if (std::adjacent_find(m_Ids.begin(), m_Ids.end()) != m_Ids.end())
        Complain("a frame came twice");
    if (!m_Ids.empty() && m_Ids.back() >= counts.made)
        Complain(FrameText(m_Ids.back()) + " came of " + std::to_string(counts.made));
    if (m_CutOff > (counts.killed ? 1 : 0))
        Complain(std::to_string(m_CutOff) + " frames are incomplete for no reason");
    const uint64_t explained = totals.delivered + totals.dropped + totals.underrun;
    CheckLeftBehind(counts, explained);
    totals.leftBehind = counts.made - explained;
    return totals;
}

void FrameAccount::CheckLeftBehind(const Counts& counts, uint64_t explained) {
    const uint64_t givenUp = counts.givesUp ? counts.underrun : 0;
    const uint64_t notFetched = counts.delivered - m_Ids.size();
    if (counts.made - explained <= counts.buffers && counts.made - explained <= notFetched &&
        notFetched <= counts.made - explained + givenUp)
        return;
    Complain(std::to_string(m_Ids.size()) + " delivered, " + std::to_string(explained) + " explained and " +
             std::to_string(counts.delivered) + " delivered by the producer are not " +
             std::to_string(counts.made) + " made");
}

Totals FrameAccount::SettleLoss(uint64_t begun, uint64_t givenUp, size_t buffers) {
    const std::lock_guard<std::mutex> guard(m_Lock);
    Totals totals;
    totals.begun = begun;
    totals.deliveredBegun = m_Ids.size();
    if (m_Ids.size() > begun || begun - m_Ids.size() > buffers + givenUp)
        Complain(std::to_string(m_Ids.size()) + " delivered of " + std::to_string(begun) + " begun, with " +
                 std::to_string(buffers) + " buffers and " + std::to_string(givenUp) + " frames given up");
    else
        totals.lostWithCamera = begun - m_Ids.size();
    return totals;
}

} // namespace ZqSoak
