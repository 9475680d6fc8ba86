#pragma once

#include "producer/gentl/Reply.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zqgentl {

/// What one event says, apart from new buffers: an error code with its text, a feature name with its value,
/// or an event id with its data. As bytes it is what EventGetData hands out and EventGetDataInfo gets back.
struct EventData {
    GenTL::EVENT_TYPE type = GenTL::EVENT_ERROR;
    uint64_t number = 0;
    std::string id;
    std::string value;

    static EventData Error(GenTL::GC_ERROR code, const std::string& text);
    /// An event of a module's own node map; the data is what the node map's event port shows from address 0
    /// on.
    static EventData Module(uint16_t eventId, const std::string& data);
    /// An event of the camera; the data is that of its event port, too.
    static EventData Remote(uint16_t eventId, const std::string& data);
    static EventData FeatureInvalidated(const char* feature);
    static EventData FeatureChanged(const char* feature, const std::string& value);

    [[nodiscard]] std::string ToBytes() const;
    /// Events of a camera are also taken in the form of their transport's packet. Throws
    /// GC_ERR_INVALID_PARAMETER unless the bytes are those of an event of this type.
    static EventData FromBytes(GenTL::EVENT_TYPE type, const void* bytes, size_t size);

    void Answer(GenTL::EVENT_DATA_INFO_CMD command, const InfoTarget& target) const;
};

/// The largest value and the largest block of bytes that any event of this producer has.
constexpr size_t eventValueMax = 256;
constexpr size_t eventBytesMax = 512;

} // namespace zqgentl
