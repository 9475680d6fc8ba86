// A data stream and its buffers, as far as no frame is needed.

#include "Context.h"

namespace contract {

namespace {

constexpr auto Size = INFO_DATATYPE_SIZET;
constexpr auto Uint64 = INFO_DATATYPE_UINT64;
constexpr auto Flag = INFO_DATATYPE_BOOL8;
constexpr auto Pointer = INFO_DATATYPE_PTR;

const std::vector<InfoRow> streamRows = {
    {STREAM_INFO_ID, "ID", INFO_DATATYPE_STRING, Need::Mandatory},
    {STREAM_INFO_NUM_DELIVERED, "NUM_DELIVERED", Uint64, Need::Optional},
    {STREAM_INFO_NUM_UNDERRUN, "NUM_UNDERRUN", Uint64, Need::Optional},
    {STREAM_INFO_NUM_ANNOUNCED, "NUM_ANNOUNCED", Size, Need::Optional},
    {STREAM_INFO_NUM_QUEUED, "NUM_QUEUED", Size, Need::Optional},
    {STREAM_INFO_NUM_AWAIT_DELIVERY, "NUM_AWAIT_DELIVERY", Size, Need::Optional},
    {STREAM_INFO_NUM_STARTED, "NUM_STARTED", Uint64, Need::Optional},
    {STREAM_INFO_PAYLOAD_SIZE, "PAYLOAD_SIZE", Size, Need::Optional},
    {STREAM_INFO_IS_GRABBING, "IS_GRABBING", Flag, Need::Mandatory},
    {STREAM_INFO_DEFINES_PAYLOADSIZE, "DEFINES_PAYLOADSIZE", Flag, Need::Mandatory},
    {STREAM_INFO_TLTYPE, "TLTYPE", INFO_DATATYPE_STRING, Need::Mandatory},
    {STREAM_INFO_NUM_CHUNKS_MAX, "NUM_CHUNKS_MAX", Size, Need::Optional},
    {STREAM_INFO_BUF_ANNOUNCE_MIN, "BUF_ANNOUNCE_MIN", Size, Need::Mandatory},
    {STREAM_INFO_BUF_ALIGNMENT, "BUF_ALIGNMENT", Size, Need::Optional},
};

/// Those that a buffer answers without a frame in it.
const std::vector<InfoRow> bufferRows = {
    {BUFFER_INFO_BASE, "BASE", Pointer, Need::Mandatory},
    {BUFFER_INFO_SIZE, "SIZE", Size, Need::Mandatory},
    {BUFFER_INFO_USER_PTR, "USER_PTR", Pointer, Need::Optional},
    {BUFFER_INFO_NEW_DATA, "NEW_DATA", Flag, Need::Mandatory},
    {BUFFER_INFO_IS_QUEUED, "IS_QUEUED", Flag, Need::Mandatory},
    {BUFFER_INFO_IS_ACQUIRING, "IS_ACQUIRING", Flag, Need::Optional},
    {BUFFER_INFO_IS_INCOMPLETE, "IS_INCOMPLETE", Flag, Need::Mandatory},
    {BUFFER_INFO_TLTYPE, "TLTYPE", INFO_DATATYPE_STRING, Need::Mandatory},
    {BUFFER_INFO_SIZE_FILLED, "SIZE_FILLED", Size, Need::Optional},
};

std::function<InfoCall(int32_t)> StreamInfo(Context& context, DS_HANDLE stream) {
    return [&context, stream](int32_t command) -> InfoCall {
        return [&context, stream, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.DSGetInfo(stream, command, type, data, size);
        };
    };
}

std::function<InfoCall(int32_t)> BufferInfo(Context& context, DS_HANDLE stream, BUFFER_HANDLE buffer) {
    return [&context, stream, buffer](int32_t command) -> InfoCall {
        return [&context, stream, buffer, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.DSGetBufferInfo(stream, buffer, command, type, data, size);
        };
    };
}

void CheckAnnouncing(Context& context, DS_HANDLE stream) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    alignas(4096) static char memory[4096];
    BUFFER_HANDLE buffer = nullptr;
    report.Result("DSAnnounceBuffer(no memory)", g.DSAnnounceBuffer(stream, nullptr, 64, nullptr, &buffer),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DSAnnounceBuffer(size 0)", g.DSAnnounceBuffer(stream, memory, 0, nullptr, &buffer),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DSAnnounceBuffer(no place)", g.DSAnnounceBuffer(stream, memory, 64, nullptr, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DSAllocAndAnnounceBuffer(size 0)", g.DSAllocAndAnnounceBuffer(stream, 0, nullptr, &buffer),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DSAllocAndAnnounceBuffer(no place)",
                  g.DSAllocAndAnnounceBuffer(stream, 64, nullptr, nullptr), {GC_ERR_INVALID_PARAMETER});
    if (!report.Success("DSAnnounceBuffer",
                        g.DSAnnounceBuffer(stream, memory, sizeof memory, &buffer, &buffer)))
        return;
    BUFFER_HANDLE second = nullptr;
    report.Result("DSAnnounceBuffer again",
                  g.DSAnnounceBuffer(stream, memory, sizeof memory, nullptr, &second),
                  {GC_ERR_RESOURCE_IN_USE});
    const auto infoOf = BufferInfo(context, stream, buffer);
    report.Holds("DSGetBufferInfo(BASE)", ValueOf<void*>(infoOf(BUFFER_INFO_BASE)) == memory, "the memory");
    report.Equal("DSGetBufferInfo(SIZE)", ValueOf<size_t>(infoOf(BUFFER_INFO_SIZE)), sizeof memory);
    report.Holds("DSGetBufferInfo(USER_PTR)", ValueOf<void*>(infoOf(BUFFER_INFO_USER_PTR)) == &buffer,
                 "the user pointer");
    void* base = nullptr;
    void* user = nullptr;
    report.Success("DSRevokeBuffer", g.DSRevokeBuffer(stream, buffer, &base, &user));
    report.Holds("DSRevokeBuffer memory", base == memory, "the memory");
    report.Holds("DSRevokeBuffer user pointer", user == &buffer, "the user pointer");
    report.Result("DSRevokeBuffer again", g.DSRevokeBuffer(stream, buffer, nullptr, nullptr),
                  {GC_ERR_INVALID_HANDLE});
    report.Success("DSAllocAndAnnounceBuffer", g.DSAllocAndAnnounceBuffer(stream, 4096, nullptr, &buffer));
    base = memory;
    report.Success("DSRevokeBuffer", g.DSRevokeBuffer(stream, buffer, &base, nullptr));
    report.Holds("DSRevokeBuffer memory of the producer", base == nullptr, "null");
}

size_t QueuedCount(Context& context, DS_HANDLE stream) {
    return ValueOf<size_t>(StreamInfo(context, stream)(STREAM_INFO_NUM_QUEUED));
}

/// Queueing, flushing and starting, with three buffers and no frame.
void CheckPools(Context& context, DS_HANDLE stream) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Result("DSStartAcquisition(no buffers)", g.DSStartAcquisition(stream, 0, 1),
                  {GC_ERR_INVALID_BUFFER});
    const auto minimum = ValueOf<size_t>(StreamInfo(context, stream)(STREAM_INFO_BUF_ANNOUNCE_MIN), 1);
    const auto payload = ValueOf<size_t>(StreamInfo(context, stream)(STREAM_INFO_PAYLOAD_SIZE), 4096);
    std::vector<BUFFER_HANDLE> buffers(std::max<size_t>(minimum, 3));
    for (BUFFER_HANDLE& buffer : buffers)
        report.Success("DSAllocAndAnnounceBuffer",
                       g.DSAllocAndAnnounceBuffer(stream, payload, nullptr, &buffer));
    report.Equal("DSGetInfo(NUM_ANNOUNCED)",
                 ValueOf<size_t>(StreamInfo(context, stream)(STREAM_INFO_NUM_ANNOUNCED)), buffers.size());
    BUFFER_HANDLE found = nullptr;
    for (uint32_t i = 0; i < buffers.size(); ++i) {
        report.Success("DSGetBufferID", g.DSGetBufferID(stream, i, &found));
        report.Holds("DSGetBufferID", found == buffers[i], "the order of announcement");
    }
    report.Result("DSGetBufferID(index beyond)",
                  g.DSGetBufferID(stream, static_cast<uint32_t>(buffers.size()), &found),
                  {GC_ERR_INVALID_INDEX});
    report.Result("DSGetBufferID(no place)", g.DSGetBufferID(stream, 0, nullptr), {GC_ERR_INVALID_PARAMETER});
    report.Enter("stream with idle buffers");
    CheckInfos(context, "DSGetBufferInfo", bufferRows, BufferInfo(context, stream, buffers[0]));
    uint32_t parts = 0;
    size_t chunks = 0;
    report.Result("DSGetNumBufferParts", g.DSGetNumBufferParts(stream, buffers[0], &parts),
                  {GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
    report.Result("DSGetBufferChunkData", g.DSGetBufferChunkData(stream, buffers[0], nullptr, &chunks),
                  {GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
    CheckEvent(context, "buffer", buffers[0], EVENT_ERROR);
    report.Success("DSQueueBuffer", g.DSQueueBuffer(stream, buffers[0]));
    report.Enter("stream with a queued buffer");
    report.Result("DSQueueBuffer again", g.DSQueueBuffer(stream, buffers[0]), {GC_ERR_RESOURCE_IN_USE});
    report.Result("DSRevokeBuffer", g.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), {GC_ERR_BUSY});
    report.Holds("DSGetBufferInfo(IS_QUEUED)",
                 ValueOf<uint8_t>(BufferInfo(context, stream, buffers[0])(BUFFER_INFO_IS_QUEUED)) != 0,
                 "true");
    report.Equal("DSGetInfo(NUM_QUEUED)", QueuedCount(context, stream), size_t{1});
    report.Success("DSFlushQueue(UNQUEUED_TO_INPUT)", g.DSFlushQueue(stream, ACQ_QUEUE_UNQUEUED_TO_INPUT));
    report.Equal("DSGetInfo(NUM_QUEUED)", QueuedCount(context, stream), buffers.size());
    report.Success("DSFlushQueue(INPUT_TO_OUTPUT)", g.DSFlushQueue(stream, ACQ_QUEUE_INPUT_TO_OUTPUT));
    report.Equal("DSGetInfo(NUM_AWAIT_DELIVERY)",
                 ValueOf<size_t>(StreamInfo(context, stream)(STREAM_INFO_NUM_AWAIT_DELIVERY)),
                 buffers.size());
    report.Success("DSFlushQueue(ALL_TO_INPUT)", g.DSFlushQueue(stream, ACQ_QUEUE_ALL_TO_INPUT));
    report.Equal("DSGetInfo(NUM_QUEUED)", QueuedCount(context, stream), buffers.size());
    report.Success("DSFlushQueue(OUTPUT_DISCARD)", g.DSFlushQueue(stream, ACQ_QUEUE_OUTPUT_DISCARD));
    report.Success("DSFlushQueue(ALL_DISCARD)", g.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
    report.Equal("DSGetInfo(NUM_QUEUED)", QueuedCount(context, stream), size_t{0});
    report.Result("DSFlushQueue(99)", g.DSFlushQueue(stream, 99),
                  {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
    report.Enter("stream stopped");
    report.Result("DSStopAcquisition", g.DSStopAcquisition(stream, 0), {GC_ERR_RESOURCE_IN_USE});
    report.Result("DSStartAcquisition(0 frames)", g.DSStartAcquisition(stream, 0, 0),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DSStartAcquisition(flags 77)", g.DSStartAcquisition(stream, 77, 1),
                  {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
    report.Success("DSStartAcquisition", g.DSStartAcquisition(stream, 0, GENTL_INFINITE));
    report.Enter("stream started, camera not");
    report.Result("DSStartAcquisition again", g.DSStartAcquisition(stream, 0, 1), {GC_ERR_RESOURCE_IN_USE});
    report.Holds("DSGetInfo(IS_GRABBING)",
                 ValueOf<uint8_t>(StreamInfo(context, stream)(STREAM_INFO_IS_GRABBING)) != 0, "true");
    report.Result("DSStopAcquisition(flags 77)", g.DSStopAcquisition(stream, 77),
                  {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
    report.Success("DSStopAcquisition", g.DSStopAcquisition(stream, 0));
    report.Holds("DSGetInfo(IS_GRABBING)",
                 ValueOf<uint8_t>(StreamInfo(context, stream)(STREAM_INFO_IS_GRABBING), 1) == 0, "false");
    for (BUFFER_HANDLE buffer : buffers)
        report.Success("DSRevokeBuffer", g.DSRevokeBuffer(stream, buffer, nullptr, nullptr));
}

} // namespace

void CheckStream(Context& context, DEV_HANDLE device, PORT_HANDLE remote, const std::string& id) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    void* none = nullptr;
    report.Result("DevOpenDataStream(no ID)", g.DevOpenDataStream(device, nullptr, &none),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("DevOpenDataStream(unknown ID)", g.DevOpenDataStream(device, "no such thing", &none),
                  {GC_ERR_INVALID_ID});
    report.Result("DevOpenDataStream(no place)", g.DevOpenDataStream(device, id.c_str(), nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    DS_HANDLE stream = nullptr;
    if (!report.Success("DevOpenDataStream", g.DevOpenDataStream(device, id.c_str(), &stream)))
        return;
    report.Enter("stream " + id);
    report.Result("DevOpenDataStream again", g.DevOpenDataStream(device, id.c_str(), &none),
                  {GC_ERR_RESOURCE_IN_USE});
    CheckInfos(context, "DSGetInfo", streamRows, StreamInfo(context, stream));
    report.Equal("DSGetInfo(ID)", TextOf(StreamInfo(context, stream)(STREAM_INFO_ID)), id);
    void* parent = nullptr;
    report.Success("DSGetParentDev", g.DSGetParentDev(stream, &parent));
    report.Holds("DSGetParentDev", parent == device, "the device's handle");
    report.Result("DSGetParentDev(null)", g.DSGetParentDev(stream, nullptr), {GC_ERR_INVALID_PARAMETER});
    CheckPort(context, "data stream", stream, "TLDataStream");
    CheckEventTypes(context, "data stream", stream,
                    {EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE});
    CheckEvent(context, "data stream", stream, EVENT_ERROR);
    CheckEvent(context, "data stream", stream, EVENT_NEW_BUFFER);
    CheckAnnouncing(context, stream);
    CheckPools(context, stream);
    CheckAcquisition(context, stream, remote);
    report.Enter("stream closed");
    BUFFER_HANDLE left = nullptr;
    report.Success("DSAllocAndAnnounceBuffer", g.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &left));
    report.Success("DSClose", g.DSClose(stream));
    report.Result("DSClose again", g.DSClose(stream), {GC_ERR_INVALID_HANDLE});
    report.Result("DSQueueBuffer", g.DSQueueBuffer(stream, left), {GC_ERR_INVALID_HANDLE});
}

} // namespace contract
