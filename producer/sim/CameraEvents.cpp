#include "producer/sim/CameraEvents.h"

#include <cstring>

namespace zqgentl {

namespace {

constexpr uint16_t eventIds[eventKindCount] = {0x9C40, 0x9C41, 0x9C42, 0x4FFF, 0x9C43, 0x9C50,
                                               0x9C51, 0x9C60, 0x9C70, 0x9C61, 0x9C71};

constexpr size_t gvcpHeaderSize = 8;
constexpr size_t gvcpItemSize = 16;
constexpr uint8_t gvcpKey = 0x42;
constexpr uint8_t gvcpAcknowledge = 0x01;
constexpr uint16_t gvcpEvent = 0x00C0;
constexpr uint16_t gvcpEventData = 0x00C2;
constexpr uint16_t noChannel = 0xFFFF;

constexpr size_t u3vHeaderSize = 12;
constexpr size_t u3vItemSize = 12;
constexpr uint32_t u3vEventPrefix = 0x45563355;
constexpr uint16_t u3vEvent = 0x0C00;

/// Numbers appended in one byte order.
class Packer {
public:
    explicit Packer(ByteOrder order) : m_order(order) {}

    Packer& Add(uint64_t bits, size_t size) {
        uint8_t bytes[8];
        StoreBytes(bytes, bits, size, m_order);
        m_bytes.append(reinterpret_cast<const char*>(bytes), size);
        return *this;
    }
    [[nodiscard]] std::string Take() { return std::move(m_bytes); }

private:
    ByteOrder m_order;
    std::string m_bytes;
};

bool BelongsToFrame(EventKind kind) {
    switch (kind) {
    case EventKind::ExposureEnd:
    case EventKind::FrameStart:
    case EventKind::FrameEnd:
    case EventKind::Error:
        return true;
    default:
        return false;
    }
}

std::string GevItem(const CameraEvent& event) {
    Packer item(ByteOrder::Big);
    item.Add(0, 2).Add(EventIdOf(event.kind), 2);
    item.Add(BelongsToFrame(event.kind) ? 0 : noChannel, 2).Add(event.frameId, 2).Add(event.timestampNs, 8);
    if (event.kind == EventKind::Error)
        item.Add(event.code, 4);
    return item.Take();
}

std::string U3vItem(const CameraEvent& event) {
    Packer item(ByteOrder::Little);
    item.Add(0, 2).Add(EventIdOf(event.kind), 2).Add(event.timestampNs, 8);
    if (BelongsToFrame(event.kind))
        item.Add(event.frameId, 8);
    if (event.kind == EventKind::Error)
        item.Add(event.code, 4);
    return item.Take();
}

std::string PlainItem(const CameraEvent& event) {
    Packer item(ByteOrder::Big);
    item.Add(0, 2).Add(EventIdOf(event.kind), 2).Add(0, 4).Add(event.timestampNs, 8).Add(event.frameId, 8);
    if (event.kind == EventKind::Error)
        item.Add(event.code, 4);
    return item.Take();
}

} // namespace

uint16_t EventIdOf(EventKind kind) {
    return eventIds[static_cast<uint32_t>(kind)];
}

bool EventHasData(EventKind kind) {
    return kind == EventKind::Error;
}

std::string EventItem(Technology technology, const CameraEvent& event) {
    switch (technology) {
    case Technology::GigEVision:
        return GevItem(event);
    case Technology::Usb3Vision:
        return U3vItem(event);
    default:
        return PlainItem(event);
    }
}

std::string EventPacket(Technology technology, const std::string& item, bool hasData, uint16_t requestId) {
    if (technology == Technology::GigEVision) {
        Packer head(ByteOrder::Big);
        head.Add(gvcpKey, 1).Add(gvcpAcknowledge, 1).Add(hasData ? gvcpEventData : gvcpEvent, 2);
        return head.Add(item.size(), 2).Add(requestId, 2).Take() + item;
    }
    Packer head(ByteOrder::Little);
    head.Add(u3vEventPrefix, 4).Add(0, 2).Add(u3vEvent, 2).Add(item.size(), 2).Add(requestId, 2);
    return head.Take() + item;
}

bool ParseEventPacket(const void* packet, size_t size, uint16_t& eventId, std::string& item) {
    const auto* bytes = static_cast<const uint8_t*>(packet);
    size_t header = 0;
    ByteOrder order = ByteOrder::Big;
    if (size >= gvcpHeaderSize + gvcpItemSize && bytes[0] == gvcpKey) {
        const uint64_t command = LoadBytes(bytes + 2, 2, order);
        if (command != gvcpEvent && command != gvcpEventData)
            return false;
        header = gvcpHeaderSize;
        if (LoadBytes(bytes + 4, 2, order) != size - header)
            return false;
    } else if (size >= u3vHeaderSize + u3vItemSize &&
               LoadBytes(bytes, 4, ByteOrder::Little) == u3vEventPrefix) {
        order = ByteOrder::Little;
        header = u3vHeaderSize;
        if (LoadBytes(bytes + 6, 2, order) != u3vEvent || LoadBytes(bytes + 8, 2, order) != size - header)
            return false;
    } else {
        return false;
    }
    eventId = static_cast<uint16_t>(LoadBytes(bytes + header + 2, 2, order));
    item.assign(reinterpret_cast<const char*>(bytes + header), size - header);
    return true;
}

} // namespace zqgentl
