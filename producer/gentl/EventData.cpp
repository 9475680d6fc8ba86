#include "producer/gentl/EventData.h"

#include "producer/sim/CameraEvents.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zqgentl {

namespace {

struct Header {
    int32_t type;
    uint32_t idSize;
    uint64_t valueSize;
    uint64_t number;
};

using Row = InfoRow<EventData>;

std::string HexId(uint16_t eventId) {
    char id[8];
    std::snprintf(id, sizeof id, "%04X", static_cast<unsigned>(eventId));
    return id;
}

[[noreturn]] void NotAvailable(const char* what) {
    throw Failure(GenTL::GC_ERR_NOT_AVAILABLE, what);
}

constexpr Row errorRows[] = {
    {GenTL::EVENT_DATA_ID, GenTL::INFO_DATATYPE_INT32,
     [](const EventData& e) { return InfoValue(e.number); }},
    {GenTL::EVENT_DATA_VALUE, GenTL::INFO_DATATYPE_STRING,
     [](const EventData& e) { return InfoValue(e.value); }},
    {GenTL::EVENT_DATA_NUMID, GenTL::INFO_DATATYPE_UINT64,
     [](const EventData& e) { return InfoValue(e.number); }},
};

constexpr Row invalidateRows[] = {
    {GenTL::EVENT_DATA_ID, GenTL::INFO_DATATYPE_STRING, [](const EventData& e) { return InfoValue(e.id); }},
    {GenTL::EVENT_DATA_VALUE, GenTL::INFO_DATATYPE_STRING,
     [](const EventData&) -> InfoValue { NotAvailable("an invalidation comes without a value"); }},
    {GenTL::EVENT_DATA_NUMID, GenTL::INFO_DATATYPE_UINT64,
     [](const EventData&) -> InfoValue { NotAvailable("feature events have no number"); }},
};

constexpr Row changeRows[] = {
    {GenTL::EVENT_DATA_ID, GenTL::INFO_DATATYPE_STRING, [](const EventData& e) { return InfoValue(e.id); }},
    {GenTL::EVENT_DATA_VALUE, GenTL::INFO_DATATYPE_STRING,
     [](const EventData& e) { return InfoValue(e.value); }},
    {GenTL::EVENT_DATA_NUMID, GenTL::INFO_DATATYPE_UINT64,
     [](const EventData&) -> InfoValue { NotAvailable("feature events have no number"); }},
};

constexpr Row itemRows[] = {
    {GenTL::EVENT_DATA_ID, GenTL::INFO_DATATYPE_STRING, [](const EventData& e) { return InfoValue(e.id); }},
    {GenTL::EVENT_DATA_VALUE, GenTL::INFO_DATATYPE_BUFFER,
     [](const EventData& e) { return InfoValue(e.value); }},
    {GenTL::EVENT_DATA_NUMID, GenTL::INFO_DATATYPE_UINT64,
     [](const EventData& e) { return InfoValue(e.number); }},
};

} // namespace

EventData EventData::Error(GenTL::GC_ERROR code, const std::string& text) {
    return {GenTL::EVENT_ERROR, static_cast<uint64_t>(static_cast<int64_t>(code)), "",
            text.substr(0, eventValueMax - 1)};
}

EventData EventData::Module(uint16_t eventId, const std::string& data) {
    return {GenTL::EVENT_MODULE, eventId, HexId(eventId), data};
}

EventData EventData::Remote(uint16_t eventId, const std::string& data) {
    return {GenTL::EVENT_REMOTE_DEVICE, eventId, HexId(eventId), data};
}

EventData EventData::FeatureInvalidated(const char* feature) {
    return {GenTL::EVENT_FEATURE_INVALIDATE, 0, feature, ""};
}

EventData EventData::FeatureChanged(const char* feature, const std::string& value) {
    return {GenTL::EVENT_FEATURE_CHANGE, 0, feature, value};
}

std::string EventData::ToBytes() const {
    const Header header{type, static_cast<uint32_t>(id.size()), value.size(), number};
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    return bytes + id + value;
}

EventData EventData::FromBytes(GenTL::EVENT_TYPE type, const void* bytes, size_t size) {
    const auto* text = &Required(static_cast<const char*>(bytes), "the event data");
    uint16_t eventId = 0;
    std::string item;
    if (type == GenTL::EVENT_REMOTE_DEVICE && ParseEventPacket(bytes, size, eventId, item))
        return Remote(eventId, item);
    Header header{};
    if (size >= sizeof header)
        std::memcpy(&header, text, sizeof header);
    const size_t rest = size < sizeof header ? 0 : size - sizeof header;
    if (size < sizeof header || header.type != type || header.idSize > rest ||
        header.valueSize != rest - header.idSize)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER, "these are not the bytes of an event of this type");
    const char* id = text + sizeof header;
    return {type, header.number, std::string(id, header.idSize),
            std::string(id + header.idSize, header.valueSize)};
}

void EventData::Answer(GenTL::EVENT_DATA_INFO_CMD command, const InfoTarget& target) const {
    switch (type) {
    case GenTL::EVENT_ERROR:
        return AnswerInfo(errorRows, *this, command, target);
    case GenTL::EVENT_FEATURE_INVALIDATE:
        return AnswerInfo(invalidateRows, *this, command, target);
    case GenTL::EVENT_FEATURE_CHANGE:
        return AnswerInfo(changeRows, *this, command, target);
    default:
        return AnswerInfo(itemRows, *this, command, target);
    }
}

} // namespace zqgentl
