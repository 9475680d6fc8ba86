#pragma once

#include <Base/GCException.h>
#include <GenApi/Types.h>

#include <cstddef>
#include <cstdint>

namespace GENAPI_NAMESPACE::inside {

/// A row of event items as a transport sends them.
struct ItemRow {
    enum class Stride : uint8_t {
        Header,   ///< items are headers and nothing else
        WholeRow, ///< one item to the end of the row
        SizeWord  ///< an item starts with its size; 0 stands for "to the end of the row"
    };
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    size_t header = 0; ///< bytes of the smallest item
    Stride stride = Stride::Header;
    bool bigEndian = false;
};

struct Item {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    uint64_t id = 0;
};

/// Takes the first item off the row. InvalidArgumentException when the row does not start with a whole one.
Item TakeItem(ItemRow& row);

/// The row that a buffer holds: either a whole packet of the transport, whose header is left out, or bare
/// items, as producers deliver them. InvalidArgumentException when it is neither.
ItemRow FindGevItems(const uint8_t* bytes, size_t size);
ItemRow FindU3vItems(const uint8_t* bytes, size_t size);

} // namespace GENAPI_NAMESPACE::inside
