#include "tests/unit/zq/Expected.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

using namespace ZqApi;

namespace {

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The components of a pixel by the letter of their kind.
using Components = std::map<char, double>;

char KindOf(EZqPixelComponent_t component) {
    static const std::string kinds = "?MRGBGGYbrbr";
    return kinds.at(component >> 24);
}

/// 4:4:4 formats and YCbCr411_8 are read by the bytes of the naming convention: the library's components of
/// them look elsewhere.
bool IsReadByHand(const std::string& name) {
    return name == "YCbCr411_8" || ((name.rfind("YCbCr", 0) == 0 || name.rfind("YUV", 0) == 0) &&
                                    !Has(name, "422") && !Has(name, "411"));
}

Components ByHand(IZqImage& image, const std::string& name, size_t x, size_t y) {
    const auto* line = static_cast<const uint8_t*>(image.GetImageBuffer()) + y * image.GetImageLinePitch();
    if (name == "YCbCr411_8") { // Y Y Cb Y Y Cr
        const uint8_t* group = line + x / 4 * 6;
        const size_t place = x % 4;
        return {{'Y', group[place < 2 ? place : place + 1]}, {'b', group[2]}, {'r', group[5]}};
    }
    const uint8_t* pixel = line + 3 * x;
    if (name == "YCbCr8")
        return {{'Y', pixel[0]}, {'b', pixel[1]}, {'r', pixel[2]}};
    return {{'b', pixel[0]}, {'Y', pixel[1]}, {'r', pixel[2]}};
}

Components ByLibrary(IZqImage& image, size_t x, size_t y, unsigned mask) {
    IZqPixelComponentValue& value = *image.GetIZqPixelComponentValue(x, y);
    Components components;
    for (size_t i = 0; i < value.GetCount(); ++i)
        components[KindOf(value.GetPixelComponent(i))] = static_cast<double>(value.GetValue(i) & mask);
    return components;
}

unsigned Byte(double value) {
    return static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 255.0)));
}

/// ITU-R BT.601 and BT.709, and the full range of JFIF.
std::vector<unsigned> ToRgb(const std::string& name, const Components& from) {
    const double luma = from.at('Y');
    const double blue = from.at('b') - 128;
    const double red = from.at('r') - 128;
    if (Has(name, "709")) {
        const double y = 1.164384 * (luma - 16);
        return {Byte(y + 1.792741 * red), Byte(y - 0.213249 * blue - 0.532909 * red),
                Byte(y + 2.112402 * blue)};
    }
    if (Has(name, "601")) {
        const double y = 1.164384 * (luma - 16);
        return {Byte(y + 1.596027 * red), Byte(y - 0.391762 * blue - 0.812968 * red),
                Byte(y + 2.017232 * blue)};
    }
    return {Byte(luma + 1.402 * red), Byte(luma - 0.344136 * blue - 0.714136 * red),
            Byte(luma + 1.772 * blue)};
}

/// The library has no component for alpha, the last of four.
unsigned Alpha(IZqImage& image, size_t x, size_t y, bool wide) {
    const auto* line = static_cast<const uint8_t*>(image.GetImageBuffer()) + y * image.GetImageLinePitch();
    return wide ? line[8 * x + 6] | line[8 * x + 7] << 8 : line[4 * x + 3];
}

} // namespace

unsigned Expected::Scaled(size_t index) const {
    const unsigned sample = samples.at(index);
    return bits > 8 ? sample << (16 - bits) : sample * 255 / ((1U << bits) - 1);
}

Expected ExpectedOf(IZqImage& image) {
    const auto& info = *GetIZqPixelFormatInfo(image.GetImagePixelFormat());
    const std::string name = info.GetName().c_str();
    Expected expected;
    expected.bits = static_cast<unsigned>(info.GetEachComponentValidBitCount());
    expected.converted = name[0] == 'Y';
    const bool hasAlpha = Has(name, "RGBa") || Has(name, "BGRa");
    const bool isGrey = !info.IsColor() || info.IsBayer();
    expected.channels = isGrey ? 1 : (hasAlpha ? 4 : 3);
    const unsigned mask = (1U << expected.bits) - 1;
    for (size_t y = 0; y < image.GetImageHeight(); ++y) {
        for (size_t x = 0; x < image.GetImageWidth(); ++x) {
            const Components pixel =
                IsReadByHand(name) ? ByHand(image, name, x, y) : ByLibrary(image, x, y, mask);
            auto& samples = expected.samples;
            if (isGrey) {
                samples.push_back(static_cast<unsigned>(pixel.begin()->second));
            } else if (expected.converted) {
                for (const unsigned sample : ToRgb(name, pixel))
                    samples.push_back(sample);
            } else {
                for (const char kind : {'R', 'G', 'B'})
                    samples.push_back(static_cast<unsigned>(pixel.at(kind)));
            }
            if (hasAlpha)
                samples.push_back(Alpha(image, x, y, expected.bits > 8) & mask);
        }
    }
    return expected;
}

std::string PhaseOf(const std::string& pixelFormat) {
    const size_t begin = pixelFormat.find("Bayer");
    return begin == std::string::npos ? "" : pixelFormat.substr(begin + 5, 2);
}
