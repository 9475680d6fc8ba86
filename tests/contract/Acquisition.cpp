// What needs frames: the data of new-buffer events, what a filled buffer tells, and the counters.

#include "Session.h"

namespace contract {

namespace {

constexpr auto Size = INFO_DATATYPE_SIZET;
constexpr auto Uint64 = INFO_DATATYPE_UINT64;
constexpr auto Flag = INFO_DATATYPE_BOOL8;

const std::vector<InfoRow> filledRows = {
    {BUFFER_INFO_TIMESTAMP, "TIMESTAMP", Uint64, Need::Optional},
    {BUFFER_INFO_SIZE_FILLED, "SIZE_FILLED", Size, Need::Optional},
    {BUFFER_INFO_WIDTH, "WIDTH", Size, Need::Optional},
    {BUFFER_INFO_HEIGHT, "HEIGHT", Size, Need::Optional},
    {BUFFER_INFO_XOFFSET, "XOFFSET", Size, Need::Optional},
    {BUFFER_INFO_YOFFSET, "YOFFSET", Size, Need::Optional},
    {BUFFER_INFO_XPADDING, "XPADDING", Size, Need::Optional},
    {BUFFER_INFO_YPADDING, "YPADDING", Size, Need::Optional},
    {BUFFER_INFO_FRAMEID, "FRAMEID", Uint64, Need::Mandatory},
    {BUFFER_INFO_IMAGEPRESENT, "IMAGEPRESENT", Flag, Need::Mandatory},
    {BUFFER_INFO_IMAGEOFFSET, "IMAGEOFFSET", Size, Need::Optional},
    {BUFFER_INFO_PAYLOADTYPE, "PAYLOADTYPE", Size, Need::Mandatory},
    {BUFFER_INFO_PIXELFORMAT, "PIXELFORMAT", Uint64, Need::Optional},
    {BUFFER_INFO_PIXELFORMAT_NAMESPACE, "PIXELFORMAT_NAMESPACE", Uint64, Need::Optional},
    {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, "DELIVERED_IMAGEHEIGHT", Size, Need::Optional},
    {BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, "DELIVERED_CHUNKPAYLOADSIZE", Size, Need::Optional},
    {BUFFER_INFO_CHUNKLAYOUTID, "CHUNKLAYOUTID", Uint64, Need::Optional},
    {BUFFER_INFO_FILENAME, "FILENAME", INFO_DATATYPE_STRING, Need::Optional},
    {BUFFER_INFO_PIXEL_ENDIANNESS, "PIXEL_ENDIANNESS", INFO_DATATYPE_INT32, Need::Optional},
    {BUFFER_INFO_DATA_SIZE, "DATA_SIZE", Size, Need::Optional},
    {BUFFER_INFO_TIMESTAMP_NS, "TIMESTAMP_NS", Uint64, Need::Optional},
    {BUFFER_INFO_DATA_LARGER_THAN_BUFFER, "DATA_LARGER_THAN_BUFFER", Flag, Need::Optional},
    {BUFFER_INFO_CONTAINS_CHUNKDATA, "CONTAINS_CHUNKDATA", Flag, Need::Mandatory},
};

void CheckEventData(Session& s, const EVENT_NEW_BUFFER_DATA& data) {
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&s, &data, command](INFO_DATATYPE* type, void* out, size_t* size) {
            return s.g.EventGetDataInfo(s.event, &data, sizeof data, command, type, out, size);
        };
    };
    const std::vector<InfoRow> rows = {
        {EVENT_DATA_ID, "ID", INFO_DATATYPE_PTR, Need::Mandatory},
        {EVENT_DATA_VALUE, "VALUE", INFO_DATATYPE_PTR, Need::Mandatory},
        {EVENT_DATA_NUMID, "NUMID", INFO_DATATYPE_UINT64, Need::Optional},
    };
    CheckInfos(s.context, "EventGetDataInfo", rows, infoOf);
    s.report.Holds("EventGetDataInfo(ID)", ValueOf<void*>(infoOf(EVENT_DATA_ID)) == data.BufferHandle,
                   "the buffer");
    s.report.Holds("EventGetDataInfo(VALUE)", ValueOf<void*>(infoOf(EVENT_DATA_VALUE)) == data.pUserPointer,
                   "the user pointer");
}

void CheckFilledBuffer(Session& s, BUFFER_HANDLE buffer) {
    Report& report = s.report;
    CheckInfos(s.context, "DSGetBufferInfo", filledRows,
               [&](int32_t command) { return s.BufferInfo(buffer, command); });
    report.Holds("DSGetBufferInfo(NEW_DATA)", s.Flagged(buffer, BUFFER_INFO_NEW_DATA), "true");
    report.Holds("DSGetBufferInfo(IS_QUEUED)", !s.Flagged(buffer, BUFFER_INFO_IS_QUEUED), "false");
    report.Holds("DSGetBufferInfo(IS_INCOMPLETE)", !s.Flagged(buffer, BUFFER_INFO_IS_INCOMPLETE), "false");
    const auto filled = ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_SIZE_FILLED));
    const auto size = ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_SIZE));
    report.Holds("DSGetBufferInfo(SIZE_FILLED)", filled > 0 && filled <= size, "1 to the size of the buffer",
                 std::to_string(filled));
    CheckChunks(s, buffer);
    CheckParts(s, buffer);
    report.Success("DSQueueBuffer", s.g.DSQueueBuffer(s.stream, buffer));
    report.Equal("DSGetBufferInfo(SIZE_FILLED) queued",
                 ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_SIZE_FILLED)), size_t{0});
    report.Holds("DSGetBufferInfo(NEW_DATA) queued", !s.Flagged(buffer, BUFFER_INFO_NEW_DATA), "false");
    report.Success("DSFlushQueue(ALL_DISCARD)", s.g.DSFlushQueue(s.stream, ACQ_QUEUE_ALL_DISCARD));
}

/// A finite acquisition: so many frames, then it has stopped by itself and is still to be stopped.
void CheckFinite(Session& s) {
    Report& report = s.report;
    report.Success("DSFlushQueue(UNQUEUED_TO_INPUT)",
                   s.g.DSFlushQueue(s.stream, ACQ_QUEUE_UNQUEUED_TO_INPUT));
    if (!s.Start(frameCount)) {
        report.Skip("frames: AcquisitionStart can't be found in the description");
        s.Stop();
        return;
    }
    uint64_t lastId = 0;
    for (size_t i = 0; i < frameCount; ++i) {
        GC_ERROR result = 0;
        const EVENT_NEW_BUFFER_DATA data = s.Next(result);
        if (!report.Success("EventGetData", result))
            break;
        report.Holds("EventGetData user pointer",
                     data.pUserPointer != nullptr &&
                         *static_cast<BUFFER_HANDLE*>(data.pUserPointer) == data.BufferHandle,
                     "that of the buffer");
        const auto id = ValueOf<uint64_t>(s.BufferInfo(data.BufferHandle, BUFFER_INFO_FRAMEID));
        report.Holds("DSGetBufferInfo(FRAMEID)", i == 0 || id > lastId, "above the last one",
                     std::to_string(id));
        lastId = id;
        if (i == 0)
            CheckEventData(s, data);
    }
    GC_ERROR result = 0;
    s.Next(result, 50);
    report.Result("EventGetData after the last frame", result, {GC_ERR_TIMEOUT});
    report.Equal("DSGetInfo(NUM_DELIVERED)", ValueOf<uint64_t>(s.StreamInfo(STREAM_INFO_NUM_DELIVERED)),
                 uint64_t{frameCount});
    report.Holds("DSGetInfo(IS_GRABBING)", ValueOf<uint8_t>(s.StreamInfo(STREAM_INFO_IS_GRABBING), 1) == 0,
                 "false");
    s.Stop();
    CheckFilledBuffer(s, s.buffers[0]);
}

/// An endless acquisition, stopped with frames unread: they stay, can be flushed back, and are no new data
/// then.
void CheckUnread(Session& s) {
    Report& report = s.report;
    report.Enter("stopped with unread frames");
    report.Success("DSFlushQueue(UNQUEUED_TO_INPUT)",
                   s.g.DSFlushQueue(s.stream, ACQ_QUEUE_UNQUEUED_TO_INPUT));
    if (!s.Start(GENTL_INFINITE))
        return;
    GC_ERROR result = 0;
    const BUFFER_HANDLE first = s.Next(result).BufferHandle;
    const bool delivered = report.Success("EventGetData", result);
    s.Stop();
    if (delivered)
        report.Holds("DSGetBufferInfo(NEW_DATA)", s.Flagged(first, BUFFER_INFO_NEW_DATA), "true");
    report.Success("DSFlushQueue(ALL_TO_INPUT)", s.g.DSFlushQueue(s.stream, ACQ_QUEUE_ALL_TO_INPUT));
    report.Success("DSFlushQueue(INPUT_TO_OUTPUT)", s.g.DSFlushQueue(s.stream, ACQ_QUEUE_INPUT_TO_OUTPUT));
    const EVENT_NEW_BUFFER_DATA flushed = s.Next(result, 0);
    if (report.Success("EventGetData of a flushed buffer", result)) {
        report.Holds("DSGetBufferInfo(NEW_DATA) flushed",
                     !s.Flagged(flushed.BufferHandle, BUFFER_INFO_NEW_DATA), "false");
        report.Success("DSQueueBuffer flushed", s.g.DSQueueBuffer(s.stream, flushed.BufferHandle));
    }
    size_t none = 0;
    report.Success("EventGetData(no buffer)", s.g.EventGetData(s.event, nullptr, &none, 0));
    report.Success("EventFlush", s.g.EventFlush(s.event));
    s.Next(result, 0);
    report.Result("EventGetData after EventFlush", result, {GC_ERR_TIMEOUT});
    char room[8];
    size_t size = sizeof room;
    s.g.DSFlushQueue(s.stream, ACQ_QUEUE_ALL_TO_INPUT);
    s.g.DSFlushQueue(s.stream, ACQ_QUEUE_UNQUEUED_TO_INPUT);
    s.g.DSFlushQueue(s.stream, ACQ_QUEUE_INPUT_TO_OUTPUT);
    report.Result("EventGetData too little room", s.g.EventGetData(s.event, room, &size, 0),
                  {GC_ERR_BUFFER_TOO_SMALL});
    s.Next(result, 0);
    report.Success("EventGetData after too little room", result);
}

} // namespace

void CheckAcquisition(Context& context, DS_HANDLE stream, PORT_HANDLE remote) {
    Report& report = context.report;
    report.Enter("acquisition");
    Session session(context, stream, remote);
    if (!report.Success("GCRegisterEvent(NEW_BUFFER)",
                        context.gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &session.event)))
        return;
    if (session.Announce()) {
        CheckFinite(session);
        CheckUnread(session);
        session.Revoke();
        CheckPayloads(session);
    } else {
        report.Skip("frames: their size is not known");
    }
    report.Enter("after the acquisition");
    report.Success("GCUnregisterEvent", context.gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER));
    session.Revoke();
}

} // namespace contract
