#include "producer/gentl/BufferModule.h"

#include <cstdio>
#include <new>

namespace zqgentl {

namespace {

struct View {
    const BufferModule& buffer;
    FrameInfo frame;
};

constexpr GenTL::INFO_DATATYPE Size = GenTL::INFO_DATATYPE_SIZET;
constexpr GenTL::INFO_DATATYPE Uint64 = GenTL::INFO_DATATYPE_UINT64;
constexpr GenTL::INFO_DATATYPE Flag = GenTL::INFO_DATATYPE_BOOL8;
constexpr GenTL::INFO_DATATYPE Pointer = GenTL::INFO_DATATYPE_PTR;

/// A value that exists only together with a frame.
template <auto Member>
InfoValue OfFrame(const View& view) {
    if (!view.frame.present)
        throw Failure(GenTL::GC_ERR_NOT_AVAILABLE, "there is no frame in the buffer");
    return InfoValue(view.frame.*Member);
}

void RequireImage(const FrameInfo& frame) {
    if (frame.present && !frame.imagePresent)
        throw Failure(GenTL::GC_ERR_NO_DATA, "there is no image in the buffer");
}

void RequireOnePart(const FrameInfo& frame) {
    if (frame.parts.count > 0)
        throw Failure(GenTL::GC_ERR_NO_DATA, "the parts of the frame have this, not the buffer");
}

/// A value of the image; a frame may have chunks only.
template <auto Member>
InfoValue OfImage(const View& view) {
    const InfoValue value = OfFrame<Member>(view);
    RequireImage(view.frame);
    RequireOnePart(view.frame);
    return value;
}

/// What is 0 for every image.
InfoValue ZeroOfImage(const View& view) {
    RequireImage(view.frame);
    return InfoValue(uint64_t{0});
}

void RequireChunks(const FrameInfo& frame) {
    if (!frame.hasChunks)
        throw Failure(GenTL::GC_ERR_NO_DATA, "there are no chunks in the buffer");
}

template <auto Member>
InfoValue OfChunks(const View& view) {
    RequireChunks(view.frame);
    return InfoValue(view.frame.*Member);
}

int32_t PayloadTypeOf(const FrameInfo& frame, const CameraModel& model) {
    if (!frame.present)
        return GenTL::PAYLOAD_TYPE_UNKNOWN;
    if (frame.parts.count > 0)
        return GenTL::PAYLOAD_TYPE_MULTI_PART;
    if (!frame.imagePresent)
        return GenTL::PAYLOAD_TYPE_CHUNK_ONLY;
    return frame.hasChunks && model.oldChunks ? GenTL::PAYLOAD_TYPE_CHUNK_DATA : GenTL::PAYLOAD_TYPE_IMAGE;
}

constexpr InfoRow<View> rows[] = {
    {GenTL::BUFFER_INFO_BASE, Pointer,
     [](const View& v) { return InfoValue(static_cast<const void*>(v.buffer.Base())); }},
    {GenTL::BUFFER_INFO_SIZE, Size, [](const View& v) { return InfoValue(v.buffer.Size()); }},
    {GenTL::BUFFER_INFO_USER_PTR, Pointer,
     [](const View& v) { return InfoValue(static_cast<const void*>(v.buffer.UserPointer())); }},
    {GenTL::BUFFER_INFO_TIMESTAMP, Uint64, OfFrame<&FrameInfo::timestampNs>},
    {GenTL::BUFFER_INFO_NEW_DATA, Flag, [](const View& v) { return InfoValue(v.frame.present); }},
    {GenTL::BUFFER_INFO_IS_QUEUED, Flag,
     [](const View& v) { return InfoValue(v.buffer.CurrentPlace() != Place::Idle); }},
    {GenTL::BUFFER_INFO_IS_ACQUIRING, Flag,
     [](const View& v) { return InfoValue(v.buffer.CurrentPlace() == Place::Filling); }},
    {GenTL::BUFFER_INFO_IS_INCOMPLETE, Flag, [](const View& v) { return InfoValue(v.frame.incomplete); }},
    {GenTL::BUFFER_INFO_TLTYPE, GenTL::INFO_DATATYPE_STRING,
     [](const View& v) { return InfoValue(v.buffer.TlType()); }},
    {GenTL::BUFFER_INFO_SIZE_FILLED, Size, [](const View& v) { return InfoValue(v.frame.sizeFilled); }},
    {GenTL::BUFFER_INFO_WIDTH, Size, OfImage<&FrameInfo::width>},
    {GenTL::BUFFER_INFO_HEIGHT, Size, OfImage<&FrameInfo::height>},
    {GenTL::BUFFER_INFO_XOFFSET, Size, OfImage<&FrameInfo::offsetX>},
    {GenTL::BUFFER_INFO_YOFFSET, Size, OfImage<&FrameInfo::offsetY>},
    {GenTL::BUFFER_INFO_XPADDING, Size,
     [](const View& v) {
         RequireOnePart(v.frame);
         return ZeroOfImage(v);
     }},
    {GenTL::BUFFER_INFO_YPADDING, Size, ZeroOfImage},
    {GenTL::BUFFER_INFO_FRAMEID, Uint64, OfFrame<&FrameInfo::frameId>},
    {GenTL::BUFFER_INFO_IMAGEPRESENT, Flag, [](const View& v) { return InfoValue(v.frame.imagePresent); }},
    {GenTL::BUFFER_INFO_IMAGEOFFSET, Size, ZeroOfImage},
    {GenTL::BUFFER_INFO_PAYLOADTYPE, Size,
     [](const View& v) { return InfoValue(PayloadTypeOf(v.frame, v.buffer.Model())); }},
    {GenTL::BUFFER_INFO_PIXELFORMAT, Uint64, OfImage<&FrameInfo::pixelFormat>},
    {GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE, Uint64, OfImage<&FrameInfo::pixelFormatNamespace>},
    {GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT, Size, OfImage<&FrameInfo::deliveredHeight>},
    {GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, Size, OfChunks<&FrameInfo::sizeFilled>},
    {GenTL::BUFFER_INFO_CHUNKLAYOUTID, Uint64, OfChunks<&FrameInfo::chunkLayoutId>},
    {GenTL::BUFFER_INFO_FILENAME, GenTL::INFO_DATATYPE_STRING,
     [](const View&) -> InfoValue {
         throw Failure(GenTL::GC_ERR_NO_DATA, "there is no file in the buffer");
     }},
    {GenTL::BUFFER_INFO_PIXEL_ENDIANNESS, GenTL::INFO_DATATYPE_INT32,
     [](const View&) { return InfoValue(int32_t{GenTL::PIXELENDIANNESS_LITTLE}); }},
    {GenTL::BUFFER_INFO_DATA_SIZE, Size, [](const View& v) { return InfoValue(v.frame.sizeFilled); }},
    {GenTL::BUFFER_INFO_TIMESTAMP_NS, Uint64, OfFrame<&FrameInfo::timestampNs>},
    {GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER, Flag,
     [](const View& v) { return InfoValue(v.frame.largerThanBuffer); }},
    {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, Flag, [](const View& v) { return InfoValue(v.frame.hasChunks); }},
};

constexpr size_t memoryAlignment = 64;

uint8_t* AllocateMemory(size_t size) {
    if (size > SIZE_MAX - memoryAlignment)
        throw std::bad_alloc();
    const size_t rounded = (size + memoryAlignment - 1) / memoryAlignment * memoryAlignment;
    auto* memory = static_cast<uint8_t*>(std::aligned_alloc(memoryAlignment, rounded));
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

BufferModule::BufferModule(std::shared_ptr<const Object> owner, const CameraModel& model, void* base,
                           size_t size, void* userPointer)
    : Module(kind), m_owner(std::move(owner)), m_model(model),
      m_memory(base == nullptr ? AllocateMemory(size) : nullptr),
      m_base(base == nullptr ? m_memory.get() : static_cast<uint8_t*>(base)), m_size(size),
      m_userPointer(userPointer) {}

std::string BufferModule::Id() const {
    char id[32];
    std::snprintf(id, sizeof id, "Buffer-%p", static_cast<const void*>(m_base));
    return id;
}

int32_t BufferModule::PayloadType() const {
    return PayloadTypeOf(Frame(), m_model);
}

const Port& BufferModule::ModulePort() const {
    std::call_once(m_portMade, [this] { m_port = std::make_unique<BufferPort>(*this); });
    return m_port->View();
}

FrameInfo BufferModule::Frame() const {
    std::lock_guard<std::mutex> guard(m_frameLock);
    return m_frame;
}

void BufferModule::SetFrame(const FrameInfo& frame) {
    std::lock_guard<std::mutex> guard(m_frameLock);
    m_frame = frame;
}

void BufferModule::AnswerInfo(GenTL::BUFFER_INFO_CMD command, const InfoTarget& target) const {
    zqgentl::AnswerInfo(rows, View{*this, Frame()}, command, target);
}

void BufferModule::AddChunks(const FrameInfo& frame, std::vector<ChunkPlace>& places) const {
    RequireChunks(frame);
    if (m_model.technology == Technology::CoaXPress) {
        const ChunkLayout layout(m_model.technology, frame.chunkMask, frame.imageSize);
        if (frame.chunksBroken || layout.PayloadSize() != frame.sizeFilled)
            throw Failure(GenTL::GC_ERR_PARSING_CHUNK_DATA, "the chunk data is not complete");
        layout.AddPlaces(places);
        return;
    }
    const ByteOrder order = m_model.technology == Technology::GigEVision ? ByteOrder::Big : ByteOrder::Little;
    if (!WalkChunks(order, m_base, frame.sizeFilled, places))
        throw Failure(GenTL::GC_ERR_PARSING_CHUNK_DATA, "the tags of the chunks don't lead to the start");
}

void BufferModule::AnswerChunks(GenTL::SINGLE_CHUNK_DATA* entries, size_t* count) const {
    size_t& capacity = Required(count, "the count");
    // Asked for every frame: after a thread's first, nothing is allocated.
    thread_local std::vector<ChunkPlace> places;
    places.clear();
    AddChunks(Frame(), places);
    if (entries != nullptr) {
        Required(entries, "the entries");
        if (capacity < places.size())
            throw Failure(GenTL::GC_ERR_BUFFER_TOO_SMALL, "room for " + std::to_string(capacity) + " of " +
                                                              std::to_string(places.size()) + " chunks");
        for (size_t i = 0; i < places.size(); ++i)
            entries[i] = {places[i].id, static_cast<ptrdiff_t>(places[i].offset), places[i].length};
    }
    capacity = places.size();
}

} // namespace zqgentl
