#include "tests/support/scripted_producer/Streaming.h"

#include <algorithm>

namespace Scripted {

using namespace GenTL;

namespace {

GC_ERROR Size(const Out& out, size_t value) {
    return out.WriteNumber(INFO_DATATYPE_SIZET, value);
}

GC_ERROR Flag(const Out& out, bool value) {
    return out.WriteNumber<uint8_t>(INFO_DATATYPE_BOOL8, value ? 1 : 0);
}

GC_ERROR Long(const Out& out, uint64_t value) {
    return out.WriteNumber(INFO_DATATYPE_UINT64, value);
}

GC_ERROR PoolInfo(const BufferModule& buffer, BUFFER_INFO_CMD command, const Out& out) {
    switch (command) {
    case BUFFER_INFO_BASE:
        return out.WriteNumber(INFO_DATATYPE_PTR, buffer.base);
    case BUFFER_INFO_SIZE:
        return Size(out, buffer.size);
    case BUFFER_INFO_USER_PTR:
        return out.WriteNumber(INFO_DATATYPE_PTR, buffer.userPointer);
    case BUFFER_INFO_NEW_DATA:
        return Flag(out, buffer.newData);
    case BUFFER_INFO_IS_QUEUED:
        return Flag(out, buffer.isQueued || buffer.awaitsDelivery);
    case BUFFER_INFO_IS_ACQUIRING:
        return Flag(out, false);
    case BUFFER_INFO_IS_INCOMPLETE:
        return Flag(out, buffer.incomplete);
    case BUFFER_INFO_SIZE_FILLED:
    case BUFFER_INFO_DATA_SIZE:
        return Size(out, buffer.filled);
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return Flag(out, buffer.largerThanBuffer);
    case BUFFER_INFO_FRAMEID:
        return Long(out, buffer.frameId);
    case BUFFER_INFO_TIMESTAMP:
    case BUFFER_INFO_TIMESTAMP_NS:
        return Long(out, buffer.frameId * 1000000);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

/// What the frame looks like, taken from the camera's registers.
GC_ERROR ImageInfo(Producer& producer, const StreamModule& stream, BUFFER_INFO_CMD command, const Out& out) {
    switch (command) {
    case BUFFER_INFO_TLTYPE:
        return out.WriteText(stream.tlType);
    case BUFFER_INFO_WIDTH:
        return Size(out, producer.RemoteNumber(stream, Width));
    case BUFFER_INFO_HEIGHT:
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return Size(out, producer.RemoteNumber(stream, Height));
    case BUFFER_INFO_XOFFSET:
    case BUFFER_INFO_YOFFSET:
    case BUFFER_INFO_XPADDING:
    case BUFFER_INFO_YPADDING:
    case BUFFER_INFO_IMAGEOFFSET:
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
        return Size(out, 0);
    case BUFFER_INFO_IMAGEPRESENT:
        return Flag(out, true);
    case BUFFER_INFO_PAYLOADTYPE:
        return Size(out, PAYLOAD_TYPE_IMAGE);
    case BUFFER_INFO_PIXELFORMAT:
        return Long(out, producer.RemoteNumber(stream, PixelFormat));
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return Long(out, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_INFO_CHUNKLAYOUTID:
        return Long(out, 0);
    case BUFFER_INFO_FILENAME:
        return GC_ERR_NO_DATA;
    case BUFFER_INFO_PIXEL_ENDIANNESS:
        return out.WriteNumber<int32_t>(INFO_DATATYPE_INT32, PIXELENDIANNESS_LITTLE);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
        return Flag(out, false);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

} // namespace

GC_ERROR StreamInfo(Producer& producer, StreamModule& stream, STREAM_INFO_CMD command, const Out& out) {
    const auto awaiting = [&] {
        return static_cast<size_t>(
            std::count_if(stream.announced.begin(), stream.announced.end(),
                          [](const BufferModule* each) { return each->awaitsDelivery; }));
    };
    switch (command) {
    case STREAM_INFO_ID:
        return out.WriteText(stream.id);
    case STREAM_INFO_NUM_DELIVERED:
        return Long(out, stream.delivered);
    case STREAM_INFO_NUM_UNDERRUN:
        return Long(out, stream.underrun);
    case STREAM_INFO_NUM_ANNOUNCED:
        return Size(out, stream.announced.size());
    case STREAM_INFO_NUM_QUEUED:
        return Size(out, stream.input.size());
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
        return Size(out, awaiting());
    case STREAM_INFO_NUM_STARTED:
        return Long(out, stream.started);
    case STREAM_INFO_PAYLOAD_SIZE:
        return Size(out, producer.RemoteNumber(stream, PayloadSize));
    case STREAM_INFO_IS_GRABBING:
        return Flag(out, stream.grabbing);
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return Flag(out, true);
    case STREAM_INFO_TLTYPE:
        return out.WriteText(stream.tlType);
    case STREAM_INFO_NUM_CHUNKS_MAX:
        return Size(out, 0);
    case STREAM_INFO_BUF_ANNOUNCE_MIN:
    case STREAM_INFO_BUF_ALIGNMENT:
        return Size(out, 1);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

GC_ERROR BufferInfo(Producer& producer, StreamModule& stream, BufferModule& buffer, BUFFER_INFO_CMD command,
                    const Out& out) {
    const auto said = buffer.infos.find(command);
    if (said != buffer.infos.end() && said->second.result != GC_ERR_SUCCESS)
        return said->second.result;
    if (said != buffer.infos.end())
        return out.Write(said->second.type, said->second.value.data(), said->second.value.size());
    const GC_ERROR pool = PoolInfo(buffer, command, out);
    return pool == GC_ERR_NOT_IMPLEMENTED ? ImageInfo(producer, stream, command, out) : pool;
}

} // namespace Scripted
