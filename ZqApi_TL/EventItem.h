#pragma once

#include <memory>

#include <ZqApi/Error.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class CZqGenTLLib;

/// One item of a received event block (EventGetDataInfo), with a NUL behind its last byte.
struct EventItem {
    GC_ERROR result = GC_ERR_NOT_AVAILABLE;
    std::unique_ptr<uint8_t[]> bytes;
    size_t size = 0;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;

    bool IsPresent() const { return result == GC_ERR_SUCCESS; }
    /// The bytes up to the first NUL.
    gcstring Text() const;
    /// The value when it was told as an integer type; false for everything else.
    bool ReadNumber(uint64_t& number) const;
};

/// A received event block and who received it.
struct EventBlock {
    CZqGenTLLib* pGenTL;
    const char* unit;
    EVENT_HANDLE hEvent;
    const void* pBuffer;
    size_t size;
};

/// Reads an item in two calls; its result tells whether it is there. One of a size that can't be had is not.
/// Throws nothing.
EventItem TryReadEventItem(const EventBlock& block, EVENT_DATA_INFO_CMD command);

/// Reads an item in two calls. Throws CZqGenTLErrorException when either fails.
EventItem ReadEventItem(const EventBlock& block, EVENT_DATA_INFO_CMD command);

} // namespace ZqApi
