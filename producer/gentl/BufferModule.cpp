#include "producer/gentl/BufferModule.h"

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

InfoValue NoChunks(const View&) {
    throw Failure(GenTL::GC_ERR_NO_DATA, "there are no chunks in the buffer");
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
    {GenTL::BUFFER_INFO_WIDTH, Size, OfFrame<&FrameInfo::width>},
    {GenTL::BUFFER_INFO_HEIGHT, Size, OfFrame<&FrameInfo::height>},
    {GenTL::BUFFER_INFO_XOFFSET, Size, OfFrame<&FrameInfo::offsetX>},
    {GenTL::BUFFER_INFO_YOFFSET, Size, OfFrame<&FrameInfo::offsetY>},
    {GenTL::BUFFER_INFO_XPADDING, Size, [](const View&) { return InfoValue(uint64_t{0}); }},
    {GenTL::BUFFER_INFO_YPADDING, Size, [](const View&) { return InfoValue(uint64_t{0}); }},
    {GenTL::BUFFER_INFO_FRAMEID, Uint64, OfFrame<&FrameInfo::frameId>},
    {GenTL::BUFFER_INFO_IMAGEPRESENT, Flag, [](const View& v) { return InfoValue(v.frame.present); }},
    {GenTL::BUFFER_INFO_IMAGEOFFSET, Size, [](const View&) { return InfoValue(uint64_t{0}); }},
    {GenTL::BUFFER_INFO_PAYLOADTYPE, Size,
     [](const View& v) {
         return InfoValue(v.frame.present ? GenTL::PAYLOAD_TYPE_IMAGE : GenTL::PAYLOAD_TYPE_UNKNOWN);
     }},
    {GenTL::BUFFER_INFO_PIXELFORMAT, Uint64, OfFrame<&FrameInfo::pixelFormat>},
    {GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE, Uint64,
     [](const View&) { return InfoValue(int32_t{GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT}); }},
    {GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT, Size, OfFrame<&FrameInfo::deliveredHeight>},
    {GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, Size, NoChunks},
    {GenTL::BUFFER_INFO_CHUNKLAYOUTID, Uint64, NoChunks},
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
    {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, Flag, [](const View&) { return InfoValue(false); }},
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

BufferModule::BufferModule(const char* tlType, void* base, size_t size, void* userPointer)
    : Module(kind), m_tlType(tlType), m_memory(base == nullptr ? AllocateMemory(size) : nullptr),
      m_base(base == nullptr ? m_memory.get() : static_cast<uint8_t*>(base)), m_size(size),
      m_userPointer(userPointer) {}

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

} // namespace zqgentl
