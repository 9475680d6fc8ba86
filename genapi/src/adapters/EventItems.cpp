
#include "genapi/src/adapters/EventItems.h"

#include <GenApi/IBase.h>

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr size_t kIdOffset = 2; ///< in the items of both transports, behind the size

uint16_t Load16(const uint8_t* bytes, bool bigEndian) {
    return static_cast<uint16_t>(bigEndian ? bytes[0] << 8 | bytes[1] : bytes[1] << 8 | bytes[0]);
}

// Producers fill up with zeros behind an item, so that only its own size tells where it ends.
ItemRow BareItem(const uint8_t* bytes, size_t size, size_t header, bool bigEndian) {
    ItemRow row{bytes, size, header, ItemRow::Stride::WholeRow, bigEndian};
    const size_t own = size < header ? 0 : Load16(bytes, bigEndian);
    if (size < header || (own != 0 && (own < header || own > size)))
        throw INVALID_ARGUMENT_EXCEPTION("%zu bytes are neither an event packet nor an event item.", size);
    if (own != 0)
        row.size = own;
    return row;
}

void RequirePayload(size_t payload, size_t left) {
    if (payload > left)
        throw INVALID_ARGUMENT_EXCEPTION("An event packet announces %zu bytes, but %zu are there.", payload,
                                         left);
    if (payload == 0)
        throw INVALID_ARGUMENT_EXCEPTION("An event packet holds no event.");
}

} // namespace

Item TakeItem(ItemRow& row) {
    if (row.size < row.header)
        throw INVALID_ARGUMENT_EXCEPTION("An event packet ends inside an event item, after %zu of %zu bytes.",
                                         row.size, row.header);
    size_t size = row.stride == ItemRow::Stride::Header ? row.header : row.size;
    const size_t own = Load16(row.bytes, row.bigEndian);
    if (row.stride == ItemRow::Stride::SizeWord && own != 0) {
        if (own < row.header || own > row.size)
            throw INVALID_ARGUMENT_EXCEPTION(
                "An event item announces %zu bytes; %zu to %zu are possible there.", own, row.header,
                row.size);
        size = own;
    }
    const Item item{row.bytes, size, Load16(row.bytes + kIdOffset, row.bigEndian)};
    row.bytes += size;
    row.size -= size;
    return item;
}

// No item can start with the key of a packet: as a size that would be more than any packet holds.
ItemRow FindGevItems(const uint8_t* bytes, size_t size) {
    constexpr size_t kPacketHeader = 8;
    constexpr size_t kItem = 16;
    constexpr size_t kExtendedItem = 24;
    constexpr uint8_t kKey = 0x42;
    constexpr uint8_t kExtendedIds = 0x10;
    constexpr uint16_t kEvent = 0x00C0;
    constexpr uint16_t kEventData = 0x00C2;
    if (size == 0 || bytes[0] != kKey)
        return BareItem(bytes, size, kItem, true);
    const uint16_t command = size < kPacketHeader ? 0 : Load16(bytes + 2, true);
    if (command != kEvent && command != kEventData)
        throw INVALID_ARGUMENT_EXCEPTION("A packet with the command 0x%04x is no event packet.", command);
    ItemRow row;
    row.bytes = bytes + kPacketHeader;
    row.size = Load16(bytes + 4, true);
    RequirePayload(row.size, size - kPacketHeader);
    const bool extended = (bytes[1] & kExtendedIds) != 0;
    row.header = extended ? kExtendedItem : kItem;
    row.bigEndian = true;
    if (command == kEventData)
        row.stride = extended ? ItemRow::Stride::SizeWord : ItemRow::Stride::WholeRow;
    return row;
}

ItemRow FindU3vItems(const uint8_t* bytes, size_t size) {
    constexpr size_t kPacketHeader = 12;
    constexpr size_t kItem = 12;
    constexpr uint8_t kPrefix[] = {0x55, 0x33, 0x56, 0x45};
    constexpr uint16_t kEvent = 0x0C00;
    if (size < sizeof kPrefix || !std::equal(kPrefix, kPrefix + sizeof kPrefix, bytes))
        return BareItem(bytes, size, kItem, false);
    const uint16_t command = size < kPacketHeader ? 0 : Load16(bytes + 6, false);
    if (command != kEvent)
        throw INVALID_ARGUMENT_EXCEPTION("A packet with the command 0x%04x is no event packet.", command);
    ItemRow row;
    row.bytes = bytes + kPacketHeader;
    row.size = Load16(bytes + 8, false);
    RequirePayload(row.size, size - kPacketHeader);
    row.header = kItem;
    row.stride = ItemRow::Stride::SizeWord;
    return row;
}

} // namespace GENAPI_NAMESPACE::inside
