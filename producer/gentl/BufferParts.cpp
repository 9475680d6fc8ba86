// What a buffer tells of the parts of its frame.

#include "producer/gentl/BufferModule.h"

#include <algorithm>

namespace zqgentl {

namespace {

struct View {
    const FrameInfo& frame;
    const Part& part;
    const uint8_t* base;
};

constexpr GenTL::INFO_DATATYPE Size = GenTL::INFO_DATATYPE_SIZET;
constexpr GenTL::INFO_DATATYPE Uint64 = GenTL::INFO_DATATYPE_UINT64;

int32_t TypeOf(Component component) {
    return component == Component::Confidence ? GenTL::PART_DATATYPE_CONFIDENCE_MAP
                                              : GenTL::PART_DATATYPE_2D_IMAGE;
}

/// What a frame that was cut off has of a part.
uint64_t Filled(const View& view) {
    if (view.frame.sizeFilled <= view.part.offset)
        return 0;
    return std::min(view.frame.sizeFilled - view.part.offset, view.part.size);
}

constexpr InfoRow<View> rows[] = {
    {GenTL::BUFFER_PART_INFO_BASE, GenTL::INFO_DATATYPE_PTR,
     [](const View& v) { return InfoValue(static_cast<const void*>(v.base + v.part.offset)); }},
    {GenTL::BUFFER_PART_INFO_DATA_SIZE, Size, [](const View& v) { return InfoValue(Filled(v)); }},
    {GenTL::BUFFER_PART_INFO_DATA_TYPE, Size,
     [](const View& v) { return InfoValue(TypeOf(v.part.component)); }},
    {GenTL::BUFFER_PART_INFO_DATA_FORMAT, Uint64, [](const View& v) { return InfoValue(v.part.format); }},
    {GenTL::BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE, Uint64,
     [](const View& v) {
         const bool own = v.part.component == Component::Intensity;
         return InfoValue(own ? v.frame.pixelFormatNamespace : GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT);
     }},
    {GenTL::BUFFER_PART_INFO_WIDTH, Size, [](const View& v) { return InfoValue(v.frame.width); }},
    {GenTL::BUFFER_PART_INFO_HEIGHT, Size, [](const View& v) { return InfoValue(v.frame.height); }},
    {GenTL::BUFFER_PART_INFO_XOFFSET, Size, [](const View& v) { return InfoValue(v.frame.offsetX); }},
    {GenTL::BUFFER_PART_INFO_YOFFSET, Size, [](const View& v) { return InfoValue(v.frame.offsetY); }},
    {GenTL::BUFFER_PART_INFO_XPADDING, Size, [](const View&) { return InfoValue(uint64_t{0}); }},
    {GenTL::BUFFER_PART_INFO_SOURCE_ID, Uint64, [](const View&) { return InfoValue(uint64_t{0}); }},
    {GenTL::BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT, Size,
     [](const View& v) { return InfoValue(Filled(v) * v.frame.height / v.part.size); }},
};

void RequireParts(const FrameInfo& frame) {
    if (!frame.present || frame.parts.count == 0)
        throw Failure(GenTL::GC_ERR_NO_DATA, "there is no multi-part frame in the buffer");
}

} // namespace

size_t BufferModule::PartCount() const {
    const FrameInfo frame = Frame();
    RequireParts(frame);
    return frame.parts.count;
}

void BufferModule::AnswerPartInfo(uint32_t index, GenTL::BUFFER_PART_INFO_CMD command,
                                  const InfoTarget& target) const {
    const FrameInfo frame = Frame();
    RequireParts(frame);
    if (index >= frame.parts.count)
        throw Failure(GenTL::GC_ERR_INVALID_INDEX,
                      "part " + std::to_string(index) + " of " + std::to_string(frame.parts.count));
    zqgentl::AnswerInfo(rows, View{frame, frame.parts.parts[index], m_base}, command, target);
}

} // namespace zqgentl
