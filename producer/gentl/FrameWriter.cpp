#include "producer/gentl/FrameWriter.h"

#include "producer/sim/Pattern.h"

namespace zqgentl {

FrameInfo DescribeFrame(const FrameTicket& ticket, uint64_t timestampNs) {
    FrameInfo frame;
    frame.present = true;
    frame.frameId = ticket.frameId;
    frame.timestampNs = timestampNs;
    frame.width = ticket.plan.region.width;
    frame.height = ticket.plan.region.height;
    frame.offsetX = ticket.plan.region.x;
    frame.offsetY = ticket.plan.region.y;
    frame.pixelFormat = ticket.plan.pixelFormat;
    return frame;
}

void WriteFrame(BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs) {
    FrameInfo frame = DescribeFrame(ticket, timestampNs);
    frame.sizeFilled =
        DrawMono8(ticket.plan.pattern, ticket.plan.region, ticket.frameId, buffer.Base(), buffer.Size());
    frame.deliveredHeight = frame.sizeFilled / frame.width;
    frame.largerThanBuffer = frame.sizeFilled < frame.width * frame.height;
    frame.incomplete = frame.largerThanBuffer;
    buffer.SetFrame(frame);
}

} // namespace zqgentl
