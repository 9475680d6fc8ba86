#pragma once

#include "producer/gentl/BufferModule.h"
#include "producer/sim/Camera.h"
#include "producer/sim/Painter.h"

#include <cstdint>

namespace zqgentl {

/// What is known of a frame before any of its data is there.
[[nodiscard]] FrameInfo DescribeFrame(const FrameTicket& ticket, uint64_t timestampNs);

/// Draws the frame into the buffer and describes it there. A frame that doesn't fit is cut off and
/// incomplete, and the result false.
bool WriteFrame(Painter& painter, BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs);

} // namespace zqgentl
