#include "tools/zq/Picture.h"

#include "tools/zq/Failure.h"
#include "tools/zq/LumaChroma.h"

#include <cstring>

namespace ZqTool {

namespace {

using namespace ZqApi;

/// Fields are read by words of eight bytes, the last ones of a frame too.
constexpr size_t spareBytes = 8;

/// Where the samples of a pixel lie: fields of `field` bits from the low end, pixels `stride` bits apart.
struct Layout {
    size_t stride;
    size_t field;
    size_t channels;
    size_t bits;
    bool blueFirst;
};

Layout LayoutOf(const IZqPixelFormatInfo& info) {
    const size_t bits = info.GetEachComponentValidBitCount();
    const size_t total = info.GetEachPixelTotalBitCount();
    if (info.IsMono() || info.IsBayer())
        return {total, total, 1, bits, false};
    const size_t field = info.GetEachComponentTotalBitCount();
    return {total, field, total / field, bits, info.IsBGROrder()};
}

uint64_t WordAt(const uint8_t* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Bits above the significant ones are not part of the picture.
template <size_t Channels>
void UnpackFields(const uint8_t* line, const Layout& layout, size_t width, uint16_t* out) {
    const auto mask = static_cast<uint16_t>((1U << layout.bits) - 1);
    for (size_t x = 0; x < width; ++x) {
        const size_t position = x * layout.stride;
        const uint64_t word = WordAt(line + position / 8) >> position % 8;
        for (size_t i = 0; i < Channels; ++i) {
            const size_t place = Channels > 1 && layout.blueFirst && i < 3 ? 2 - i : i;
            out[x * Channels + place] = static_cast<uint16_t>(word >> i * layout.field) & mask;
        }
    }
}

void UnpackInterleaved(const Frame& frame, const Layout& layout, Picture& picture) {
    for (size_t y = 0; y < frame.height; ++y) {
        const uint8_t* line = frame.bytes.data() + y * frame.linePitch;
        uint16_t* out = picture.samples.data() + y * frame.width * layout.channels;
        if (layout.channels == 1)
            UnpackFields<1>(line, layout, frame.width, out);
        else if (layout.channels == 3)
            UnpackFields<3>(line, layout, frame.width, out);
        else
            UnpackFields<4>(line, layout, frame.width, out);
    }
}

void UnpackPlanes(const Frame& frame, const IZqPixelFormatInfo& info, Picture& picture) {
    const size_t field = info.GetEachComponentTotalBitCount();
    const Layout plane{field, field, 1, picture.bits, false};
    std::vector<uint16_t> line(frame.width);
    for (size_t i = 0; i < picture.channels; ++i) {
        for (size_t y = 0; y < frame.height; ++y) {
            UnpackFields<1>(frame.bytes.data() + i * frame.planePitch + y * frame.linePitch, plane,
                            frame.width, line.data());
            uint16_t* out = picture.samples.data() + y * frame.width * picture.channels + i;
            for (size_t x = 0; x < frame.width; ++x)
                out[x * picture.channels] = line[x];
        }
    }
}

/// Two pixels in three bytes: the outer ones are their upper eight bits, the middle one has the lower bits of
/// the left pixel in its upper half and those of the right one in its lower half.
void UnpackGevPairs(const Frame& frame, Picture& picture) {
    const size_t lowBits = picture.bits - 8;
    const unsigned mask = (1U << lowBits) - 1;
    for (size_t y = 0; y < frame.height; ++y) {
        const uint8_t* line = frame.bytes.data() + y * frame.linePitch;
        uint16_t* out = picture.samples.data() + y * frame.width;
        for (size_t x = 0; x < frame.width; ++x) {
            const uint8_t* pair = line + x / 2 * 3;
            const unsigned high = x % 2 == 0 ? pair[0] : pair[2];
            const unsigned low = x % 2 == 0 ? pair[1] >> 4 : pair[1];
            out[x] = static_cast<uint16_t>(high << lowBits | (low & mask));
        }
    }
}

std::string PhaseOf(const IZqPixelFormatInfo& info) {
    switch (info.GetPixelColorFilter(0, 0)) {
    case ZqPixelColorFilter_BayerRG:
        return "RG";
    case ZqPixelColorFilter_BayerGR:
        return "GR";
    case ZqPixelColorFilter_BayerGB:
        return "GB";
    case ZqPixelColorFilter_BayerBG:
        return "BG";
    default:
        return {};
    }
}

} // namespace

void Frame::CopyFrom(IZqImage& image, size_t readable) {
    format = image.GetImagePixelFormat();
    width = image.GetImageWidth();
    height = image.GetImageHeight();
    linePitch = image.GetImageLinePitch();
    planePitch = image.GetImagePlanePitch();
    const IZqPixelFormatInfo& info = *GetIZqPixelFormatInfo(format);
    size = planePitch * info.GetPlaneCount();
    if (linePitch == 0 || size / info.GetPlaneCount() != planePitch || size > readable ||
        info.GetRequiredLinePitch(width, 1) > linePitch || planePitch / linePitch < height)
        throw Failure("reading a picture of " + std::to_string(width) + "x" + std::to_string(height) + " " +
                          info.GetName().c_str(),
                      "its buffer holds only " + std::to_string(readable) + " bytes",
                      "try again; if it stays, report it to the producer's maker");
    bytes.resize(size + spareBytes);
    std::memcpy(bytes.data(), image.GetImageBuffer(), size);
}

std::string Picture::Description() const {
    return "PixelFormat=" + pixelFormat + (bayerPhase.empty() ? "" : " BayerPhase=" + bayerPhase);
}

Picture Unpack(const Frame& frame) {
    const IZqPixelFormatInfo& info = *GetIZqPixelFormatInfo(frame.format);
    const LumaChroma* lumaChroma = FindLumaChroma(frame.format);
    const Layout layout = LayoutOf(info);
    Picture picture;
    picture.width = frame.width;
    picture.height = frame.height;
    picture.channels = lumaChroma != nullptr ? 3 : layout.channels;
    picture.bits = layout.bits;
    picture.pixelFormat = info.GetName().c_str();
    picture.bayerPhase = PhaseOf(info);
    picture.samples.resize(frame.width * frame.height * picture.channels);
    if (lumaChroma != nullptr)
        ConvertToRgb(frame, *lumaChroma, picture);
    else if (info.GetPlaneCount() > 1)
        UnpackPlanes(frame, info, picture);
    else if (info.IsGevSp())
        UnpackGevPairs(frame, picture);
    else
        UnpackInterleaved(frame, layout, picture);
    return picture;
}

} // namespace ZqTool
