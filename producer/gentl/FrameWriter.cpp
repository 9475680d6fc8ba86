#include "producer/gentl/FrameWriter.h"

#include "producer/sim/Pattern.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zqgentl {

namespace {

ChunkValues ValuesOf(const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    return {ticket.frameId, timestampNs,       plan.exposureTimeUs,
            plan.gainDb,    plan.region.width, plan.region.height,
            plan.region.x,  plan.region.y,     static_cast<uint32_t>(plan.pixelFormat),
            plan.lineStatus};
}

size_t DrawImage(const FrameTicket& ticket, uint8_t* target, size_t size) {
    return DrawMono8(ticket.plan.pattern, ticket.plan.region, ticket.frameId, target, size);
}

/// The whole payload: the image and what follows it.
void WritePayload(const FrameTicket& ticket, uint64_t timestampNs, uint8_t* target) {
    const ChunkLayout& chunks = ticket.plan.chunks;
    if (chunks.Empty() || chunks.ImageSize() > 0)
        DrawImage(ticket, target, ticket.plan.imageSize);
    if (!chunks.Empty())
        chunks.Write(ValuesOf(ticket, timestampNs), target);
}

/// As much of a payload as fits. Chunks need their image, so one that carries some is written aside first.
void WriteCutOff(const FrameTicket& ticket, uint64_t timestampNs, uint8_t* target, size_t size) {
    if (ticket.plan.chunks.Empty()) {
        DrawImage(ticket, target, size);
        return;
    }
    std::vector<uint8_t> whole(ticket.plan.payloadSize);
    WritePayload(ticket, timestampNs, whole.data());
    std::memcpy(target, whole.data(), size);
}

} // namespace

FrameInfo DescribeFrame(const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    FrameInfo frame;
    frame.present = true;
    frame.frameId = ticket.frameId;
    frame.timestampNs = timestampNs;
    frame.width = plan.region.width;
    frame.height = plan.region.height;
    frame.offsetX = plan.region.x;
    frame.offsetY = plan.region.y;
    frame.pixelFormat = plan.pixelFormat;
    frame.imageSize = plan.imageSize;
    frame.hasChunks = !plan.chunks.Empty();
    frame.imagePresent = !frame.hasChunks || plan.chunks.ImageSize() > 0;
    frame.chunkMask = plan.chunks.Mask();
    frame.chunkLayoutId = plan.chunkLayoutId;
    return frame;
}

void WriteFrame(BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs) {
    FrameInfo frame = DescribeFrame(ticket, timestampNs);
    frame.sizeFilled = std::min(buffer.Size(), ticket.plan.payloadSize);
    frame.largerThanBuffer = frame.sizeFilled < ticket.plan.payloadSize;
    frame.incomplete = frame.largerThanBuffer;
    frame.deliveredHeight = std::min<uint64_t>(frame.height, frame.sizeFilled / frame.width);
    if (frame.largerThanBuffer)
        WriteCutOff(ticket, timestampNs, buffer.Base(), frame.sizeFilled);
    else
        WritePayload(ticket, timestampNs, buffer.Base());
    buffer.SetFrame(frame);
}

} // namespace zqgentl
