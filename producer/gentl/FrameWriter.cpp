#include "producer/gentl/FrameWriter.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zqgentl {

namespace {

ChunkValues ValuesOf(const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    return {ticket.frameId,          timestampNs,
            plan.exposureTimeUs,     plan.gainDb,
            plan.scene.region.width, plan.scene.region.height,
            plan.scene.region.x,     plan.scene.region.y,
            plan.format->code,       plan.lineStatus};
}

void DrawImage(Painter& painter, const FrameTicket& ticket, uint8_t* target, size_t size) {
    const FramePlan& plan = ticket.plan;
    painter.Draw(plan.scene, *plan.format, plan.tone, ticket.frameId, target, size);
    if (plan.parts.count == 0)
        return;
    // Where the scene is bright there is confidence, too: the same picture in one byte a pixel.
    static const PixelFormat& mono8 = *FindPixelFormat(Technology::Mixed, pixelFormatMono8);
    const Part& confidence = plan.parts.parts[1];
    if (size > confidence.offset)
        painter.Draw(plan.scene, mono8, nullptr, ticket.frameId, target + confidence.offset,
                     size - confidence.offset);
}

/// The whole payload: the image and what follows it.
void WritePayload(Painter& painter, const FrameTicket& ticket, uint64_t timestampNs, uint8_t* target) {
    const ChunkLayout& chunks = ticket.plan.chunks;
    if (chunks.Empty() || chunks.ImageSize() > 0)
        DrawImage(painter, ticket, target, ticket.plan.imageSize);
    if (!chunks.Empty())
        chunks.Write(ValuesOf(ticket, timestampNs), target);
}

/// As much of a payload as fits. Chunks need their image, so one that carries some is written aside first.
void WriteCutOff(Painter& painter, const FrameTicket& ticket, uint64_t timestampNs, uint8_t* target,
                 size_t size) {
    if (ticket.plan.chunks.Empty()) {
        DrawImage(painter, ticket, target, size);
        return;
    }
    std::vector<uint8_t> whole(ticket.plan.payloadSize);
    WritePayload(painter, ticket, timestampNs, whole.data());
    std::memcpy(target, whole.data(), size);
}

} // namespace

FrameInfo DescribeFrame(const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    FrameInfo frame;
    frame.present = true;
    frame.frameId = ticket.frameId;
    frame.timestampNs = timestampNs;
    frame.width = plan.scene.region.width;
    frame.height = plan.scene.region.height;
    frame.offsetX = plan.scene.region.x;
    frame.offsetY = plan.scene.region.y;
    frame.pixelFormat = plan.formatCode;
    frame.pixelFormatNamespace = plan.formatNamespace;
    frame.imageSize = plan.imageSize;
    frame.parts = plan.parts;
    frame.hasChunks = !plan.chunks.Empty();
    frame.imagePresent = !frame.hasChunks || plan.chunks.ImageSize() > 0;
    frame.chunkMask = plan.chunks.Mask();
    frame.chunkLayoutId = plan.chunkLayoutId;
    return frame;
}

bool WriteFrame(Painter& painter, BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    const FrameFaults& faults = plan.faults;
    const bool half = faults.Interrupts(ticket.frameId);
    FrameInfo frame = DescribeFrame(ticket, timestampNs);
    frame.sizeFilled = std::min(buffer.Size(), half ? plan.payloadSize / 2 : plan.payloadSize);
    frame.largerThanBuffer = buffer.Size() < plan.payloadSize || faults.Outgrows(ticket.frameId);
    frame.incomplete = frame.largerThanBuffer || half;
    frame.deliveredHeight =
        std::min<uint64_t>(frame.height, frame.sizeFilled * frame.height / frame.imageSize);
    if (frame.sizeFilled < plan.payloadSize)
        WriteCutOff(painter, ticket, timestampNs, buffer.Base(), frame.sizeFilled);
    else
        WritePayload(painter, ticket, timestampNs, buffer.Base());
    if (frame.hasChunks && faults.BreaksChunks(ticket.frameId)) {
        frame.chunksBroken = true;
        // The last tag ends with its length, in either byte order.
        if (frame.sizeFilled >= 4)
            std::memset(buffer.Base() + frame.sizeFilled - 4, 0xFF, 4);
    }
    buffer.SetFrame(frame);
    return !frame.largerThanBuffer;
}

} // namespace zqgentl
