#pragma once

#include "producer/sim/CameraModel.h"

#include <cstdint>
#include <string>

namespace zqgentl {

/// The events a camera can send, numbered as the enumeration EventSelector numbers them.
enum class EventKind : uint32_t {
    ExposureEnd,
    FrameStart,
    FrameEnd,
    Test,
    Error,
    Line0RisingEdge,
    Line0FallingEdge,
    Counter0End,
    Timer0End,
    Counter1End,
    Timer1End,
};
constexpr uint32_t eventKindCount = 11;

/// A set of events, one bit each.
using EventMask = uint32_t;
constexpr EventMask MaskOf(EventKind kind) {
    return EventMask{1} << static_cast<uint32_t>(kind);
}

/// Numbered as the enumeration EventNotification numbers them. Once: Off again after the next event.
enum class Notification : int64_t { Off, On, Once };

/// One event as it happened.
struct CameraEvent {
    EventKind kind;
    uint64_t frameId = 0;
    uint64_t timestampNs = 0;
    uint32_t code = 0; ///< of an error
};

[[nodiscard]] uint16_t EventIdOf(EventKind kind);

/// The event as the event port of the camera's description shows it, from address 0 on: the item of the
/// transport's packet, or, where there is none (CoaXPress), a block of the camera's own.
[[nodiscard]] std::string EventItem(Technology technology, const CameraEvent& event);

/// The whole packet of the transport around an item: a GigE Vision control packet or a USB3 Vision event
/// packet. Not to be asked for other technologies.
[[nodiscard]] std::string EventPacket(Technology technology, const std::string& item, bool hasData,
                                      uint16_t requestId);

/// Whether the event has data behind its item's head, which decides between the two packets of GigE Vision.
[[nodiscard]] bool EventHasData(EventKind kind);

/// Takes such a packet apart again. False when it isn't one.
bool ParseEventPacket(const void* packet, size_t size, uint16_t& eventId, std::string& item);

} // namespace zqgentl
