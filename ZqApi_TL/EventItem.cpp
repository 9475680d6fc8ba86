#include "ZqApi_TL/EventItem.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

// No event carries as much; a larger size is a producer's mistake, refused before anything is allocated.
constexpr size_t LARGEST_ITEM = size_t{16} << 20;

/// `failed(type, size)` is called right after the failing call, with the addresses that it had.
template <class Failed>
EventItem Read(const EventBlock& block, EVENT_DATA_INFO_CMD command, Failed failed) {
    EventItem item;
    INFO_DATATYPE& type = item.type;
    size_t size = 0;
    const auto ask = [&](void* data) {
        item.result = CallProducer(block.pGenTL->EventGetDataInfo, block.hEvent, block.pBuffer, block.size,
                                   command, &type, data, &size);
        if (item.result != GC_ERR_SUCCESS)
            failed(item.result, &type, data, &size);
        return item.result == GC_ERR_SUCCESS;
    };
    if (!ask(nullptr))
        return item;
    item.size = size;
    item.bytes = ConvertBadAlloc(block.unit, __LINE__, [size] {
        if (size > LARGEST_ITEM)
            throw std::bad_alloc();
        return std::unique_ptr<uint8_t[]>(new uint8_t[size + 1]());
    });
    if (!ask(item.bytes.get())) {
        item.bytes.reset();
        item.size = 0;
    } else {
        // Less than announced is what there is; more was never written.
        item.size = std::min(item.size, size);
    }
    return item;
}

} // namespace

gcstring EventItem::Text() const {
    const char* text = reinterpret_cast<const char*>(bytes.get());
    return text == nullptr ? gcstring() : gcstring(text, strnlen(text, size));
}

bool EventItem::ReadNumber(uint64_t& number) const {
    const bool integer = type >= INFO_DATATYPE_INT16 && type <= INFO_DATATYPE_UINT64;
    if (!IsPresent() || !integer || size == 0 || size > sizeof number)
        return false;
    number = 0;
    std::memcpy(&number, bytes.get(), size);
    return true;
}

EventItem TryReadEventItem(const EventBlock& block, EVENT_DATA_INFO_CMD command) {
    try {
        return Read(block, command, [](GC_ERROR, INFO_DATATYPE*, void*, size_t*) {});
    } catch (const GenICam::BadAllocException&) {
        EventItem item;
        item.result = GC_ERR_OUT_OF_MEMORY;
        return item;
    }
}

EventItem ReadEventItem(const EventBlock& block, EVENT_DATA_INFO_CMD command) {
    return Read(block, command, [&](GC_ERROR result, INFO_DATATYPE* type, void* data, size_t* size) {
        throw ProducerError(block.pGenTL, block.unit, __LINE__, result, "EventGetDataInfo",
                            "%d = EventGetDataInfo(0x%p, 0x%p, %u, %d, 0x%p, 0x%p, 0x%p)", result,
                            block.hEvent, block.pBuffer, block.size, command, type, data, size);
    });
}

} // namespace ZqApi
