// Frames that are more than one image: chunks and parts.

#include "Session.h"

namespace contract {

namespace {

constexpr auto Size = INFO_DATATYPE_SIZET;
constexpr auto Uint64 = INFO_DATATYPE_UINT64;

const std::vector<InfoRow> partRows = {
    {BUFFER_PART_INFO_BASE, "BASE", INFO_DATATYPE_PTR, Need::Mandatory},
    {BUFFER_PART_INFO_DATA_SIZE, "DATA_SIZE", Size, Need::Mandatory},
    {BUFFER_PART_INFO_DATA_TYPE, "DATA_TYPE", Size, Need::Mandatory},
    {BUFFER_PART_INFO_DATA_FORMAT, "DATA_FORMAT", Uint64, Need::Mandatory},
    {BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE, "DATA_FORMAT_NAMESPACE", Uint64, Need::Mandatory},
    {BUFFER_PART_INFO_WIDTH, "WIDTH", Size, Need::Optional},
    {BUFFER_PART_INFO_HEIGHT, "HEIGHT", Size, Need::Optional},
    {BUFFER_PART_INFO_XOFFSET, "XOFFSET", Size, Need::Optional},
    {BUFFER_PART_INFO_YOFFSET, "YOFFSET", Size, Need::Optional},
    {BUFFER_PART_INFO_XPADDING, "XPADDING", Size, Need::Optional},
    {BUFFER_PART_INFO_SOURCE_ID, "SOURCE_ID", Uint64, Need::Optional},
    {BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT, "DELIVERED_IMAGEHEIGHT", Size, Need::Optional},
    {BUFFER_PART_INFO_REGION_ID, "REGION_ID", Uint64, Need::Optional},
    {BUFFER_PART_INFO_DATA_PURPOSE_ID, "DATA_PURPOSE_ID", Uint64, Need::Optional},
};

void CheckChunkList(Session& s, BUFFER_HANDLE buffer, size_t announced) {
    Report& report = s.report;
    report.Holds("DSGetBufferChunkData count", announced > 0, "one at least");
    std::vector<SINGLE_CHUNK_DATA> chunks(announced + 1);
    size_t count = announced;
    if (!report.Success("DSGetBufferChunkData exact room",
                        s.g.DSGetBufferChunkData(s.stream, buffer, chunks.data(), &count)))
        return;
    report.Equal("DSGetBufferChunkData count written", count, announced);
    const auto filled = ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_SIZE_FILLED));
    for (size_t i = 0; i < count; ++i) {
        const SINGLE_CHUNK_DATA& chunk = chunks[i];
        const auto offset = static_cast<size_t>(chunk.ChunkOffset);
        report.Holds("DSGetBufferChunkData place",
                     chunk.ChunkOffset >= 0 && offset <= filled && chunk.ChunkLength <= filled - offset,
                     "within the data", std::to_string(chunk.ChunkOffset));
    }
    count = announced + 1;
    report.Success("DSGetBufferChunkData more room",
                   s.g.DSGetBufferChunkData(s.stream, buffer, chunks.data(), &count));
    report.Equal("DSGetBufferChunkData more room, count written", count, announced);
    if (announced > 0) {
        count = announced - 1;
        report.Result("DSGetBufferChunkData too little room",
                      s.g.DSGetBufferChunkData(s.stream, buffer, chunks.data(), &count),
                      {GC_ERR_BUFFER_TOO_SMALL});
    }
}

/// One part: its information, and that it lies in the buffer.
void CheckPart(Session& s, BUFFER_HANDLE buffer, uint32_t index) {
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&s, buffer, index, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return s.g.DSGetBufferPartInfo(s.stream, buffer, index, command, type, data, size);
        };
    };
    CheckInfos(s.context, "DSGetBufferPartInfo", partRows, infoOf);
    const auto* base = ValueOf<const char*>(s.BufferInfo(buffer, BUFFER_INFO_BASE));
    const auto room = ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_SIZE));
    const auto* part = ValueOf<const char*>(infoOf(BUFFER_PART_INFO_BASE));
    const auto size = ValueOf<size_t>(infoOf(BUFFER_PART_INFO_DATA_SIZE));
    s.report.Holds("DSGetBufferPartInfo(BASE)", part >= base && part + size <= base + room,
                   "within the buffer, with DATA_SIZE");
}

/// A frame of a camera whose features have just been changed.
void CheckFrame(Session& s, void (*check)(Session&, BUFFER_HANDLE)) {
    GC_ERROR result = GC_ERR_ERROR;
    if (s.Announce()) {
        s.report.Success("DSFlushQueue(UNQUEUED_TO_INPUT)",
                         s.g.DSFlushQueue(s.stream, ACQ_QUEUE_UNQUEUED_TO_INPUT));
        s.Start(1);
        const BUFFER_HANDLE buffer = s.Next(result).BufferHandle;
        s.Stop();
        if (s.report.Success("EventGetData", result))
            check(s, buffer);
    }
    s.Revoke();
}

} // namespace

void CheckChunks(Session& s, BUFFER_HANDLE buffer) {
    Report& report = s.report;
    SINGLE_CHUNK_DATA chunk{};
    size_t count = 0;
    const bool chunks = s.Flagged(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA);
    const GC_ERROR asked = s.g.DSGetBufferChunkData(s.stream, buffer, nullptr, &count);
    report.Result("DSGetBufferChunkData", asked,
                  {chunks ? GC_ERR_SUCCESS : GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
    report.Result("DSGetBufferChunkData(no count)",
                  s.g.DSGetBufferChunkData(s.stream, buffer, &chunk, nullptr),
                  {GC_ERR_INVALID_PARAMETER, GC_ERR_NOT_IMPLEMENTED});
    if (chunks && asked == GC_ERR_SUCCESS)
        CheckChunkList(s, buffer, count);
}

void CheckParts(Session& s, BUFFER_HANDLE buffer) {
    Report& report = s.report;
    uint32_t parts = 0;
    const bool multi =
        ValueOf<size_t>(s.BufferInfo(buffer, BUFFER_INFO_PAYLOADTYPE)) == size_t{PAYLOAD_TYPE_MULTI_PART};
    const GC_ERROR asked = s.g.DSGetNumBufferParts(s.stream, buffer, &parts);
    report.Result("DSGetNumBufferParts", asked,
                  {multi ? GC_ERR_SUCCESS : GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
    INFO_DATATYPE type = 0;
    size_t size = 0;
    if (asked != GC_ERR_SUCCESS) {
        report.Result(
            "DSGetBufferPartInfo(no parts)",
            s.g.DSGetBufferPartInfo(s.stream, buffer, 0, BUFFER_PART_INFO_BASE, &type, nullptr, &size),
            {GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
        return;
    }
    report.Holds("DSGetNumBufferParts", parts > 0, "one at least");
    report.Result("DSGetNumBufferParts(null)", s.g.DSGetNumBufferParts(s.stream, buffer, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    for (uint32_t i = 0; i < parts; ++i)
        CheckPart(s, buffer, i);
    for (const uint32_t beyond : {parts, ~uint32_t{0}})
        report.Result(
            "DSGetBufferPartInfo(index beyond)",
            s.g.DSGetBufferPartInfo(s.stream, buffer, beyond, BUFFER_PART_INFO_BASE, &type, nullptr, &size),
            {GC_ERR_INVALID_INDEX});
}

void CheckPayloads(Session& s) {
    s.report.Enter("chunks switched on");
    if (s.features.Write("ChunkModeActive", 1)) {
        CheckFrame(s, CheckChunks);
        s.features.Write("ChunkModeActive", 0);
    } else {
        s.report.Skip("chunks: ChunkModeActive can't be found or written");
    }
    // Which number a component has, every camera says for itself: the second one of any.
    s.report.Enter("another component switched on");
    if (s.features.Write("ComponentSelector", 1) && s.features.Write("ComponentEnable", 1)) {
        CheckFrame(s, CheckParts);
        s.features.Write("ComponentEnable", 0);
        s.features.Write("ComponentSelector", 0);
    } else {
        s.report.Skip("parts: ComponentSelector and ComponentEnable can't be found or written");
    }
}

} // namespace contract
