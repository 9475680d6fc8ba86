// What reading a pixel's components costs through the interface, for every pixel format: a whole image of
// 1920 x 1080 pixels, and of each pixel the count, every value and what each value is.
//
// Ends with a failure when a format is dearer than the limit, or when a value is not what the format's layout
// says.

#include <ZqApi/ZqApi.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "tests/support/ImageBuffers.h"
#include "tests/support/PixelLayout.h"

namespace {

using namespace ZqApi;

constexpr size_t WIDTH = 1920;
constexpr size_t HEIGHT = 1080;
constexpr double LIMIT_NS = 40;
constexpr int PASSES = 3;

constexpr EZqPixelFormatNamingConvention_t FORMATS[] = {
    ZqPixelFormat_Mono1p,
    ZqPixelFormat_Mono2p,
    ZqPixelFormat_Mono4p,
    ZqPixelFormat_Mono8,
    ZqPixelFormat_Mono10,
    ZqPixelFormat_Mono10p,
    ZqPixelFormat_Mono12,
    ZqPixelFormat_Mono12p,
    ZqPixelFormat_Mono14,
    ZqPixelFormat_Mono14p,
    ZqPixelFormat_Mono16,
    ZqPixelFormat_BayerGR4p,
    ZqPixelFormat_BayerRG4p,
    ZqPixelFormat_BayerGB4p,
    ZqPixelFormat_BayerBG4p,
    ZqPixelFormat_BayerGR8,
    ZqPixelFormat_BayerGR10,
    ZqPixelFormat_BayerGR10p,
    ZqPixelFormat_BayerGR12,
    ZqPixelFormat_BayerGR12p,
    ZqPixelFormat_BayerGR14,
    ZqPixelFormat_BayerGR14p,
    ZqPixelFormat_BayerGR16,
    ZqPixelFormat_BayerRG8,
    ZqPixelFormat_BayerRG10,
    ZqPixelFormat_BayerRG10p,
    ZqPixelFormat_BayerRG12,
    ZqPixelFormat_BayerRG12p,
    ZqPixelFormat_BayerRG14,
    ZqPixelFormat_BayerRG14p,
    ZqPixelFormat_BayerRG16,
    ZqPixelFormat_BayerGB8,
    ZqPixelFormat_BayerGB10,
    ZqPixelFormat_BayerGB10p,
    ZqPixelFormat_BayerGB12,
    ZqPixelFormat_BayerGB12p,
    ZqPixelFormat_BayerGB14,
    ZqPixelFormat_BayerGB14p,
    ZqPixelFormat_BayerGB16,
    ZqPixelFormat_BayerBG8,
    ZqPixelFormat_BayerBG10,
    ZqPixelFormat_BayerBG10p,
    ZqPixelFormat_BayerBG12,
    ZqPixelFormat_BayerBG12p,
    ZqPixelFormat_BayerBG14,
    ZqPixelFormat_BayerBG14p,
    ZqPixelFormat_BayerBG16,
    ZqPixelFormat_GVSP_Mono10Packed,
    ZqPixelFormat_GVSP_Mono12Packed,
    ZqPixelFormat_GVSP_BayerGR10Packed,
    ZqPixelFormat_GVSP_BayerGR12Packed,
    ZqPixelFormat_GVSP_BayerRG10Packed,
    ZqPixelFormat_GVSP_BayerRG12Packed,
    ZqPixelFormat_GVSP_BayerGB10Packed,
    ZqPixelFormat_GVSP_BayerGB12Packed,
    ZqPixelFormat_GVSP_BayerBG10Packed,
    ZqPixelFormat_GVSP_BayerBG12Packed,
    ZqPixelFormat_RGB8,
    ZqPixelFormat_BGR8,
    ZqPixelFormat_BGR10,
    ZqPixelFormat_BGR12,
    ZqPixelFormat_BGR14,
    ZqPixelFormat_BGR16,
    ZqPixelFormat_RGBa8,
    ZqPixelFormat_BGRa8,
    ZqPixelFormat_BGRa10,
    ZqPixelFormat_BGRa12,
    ZqPixelFormat_BGRa14,
    ZqPixelFormat_BGRa16,
    ZqPixelFormat_RGB10p32,
    ZqPixelFormat_CBGR10p32,
    ZqPixelFormat_YCbCr8,
    ZqPixelFormat_YCbCr411_8,
    ZqPixelFormat_YCbCr422_8,
    ZqPixelFormat_YCbCr709_422_8,
    ZqPixelFormat_RGB8_Planar,
    ZqPixelFormat_RGB10_Planar,
    ZqPixelFormat_RGB12_Planar,
    ZqPixelFormat_RGB16_Planar,
    ZqPixelFormat_RGB16,
    ZqPixelFormat_BGR10p,
    ZqPixelFormat_BGR12p,
    ZqPixelFormat_RGB10p,
    ZqPixelFormat_RGB12p,
    ZqPixelFormat_YCbCr601_422_8,
    ZqPixelFormat_YCbCr411_8_CbYYCrYY,
    ZqPixelFormat_YCbCr601_411_8_CbYYCrYY,
    ZqPixelFormat_YCbCr709_411_8_CbYYCrYY,
    ZqPixelFormat_YCbCr422_8_CbYCrY,
    ZqPixelFormat_YCbCr601_422_8_CbYCrY,
    ZqPixelFormat_YCbCr709_422_8_CbYCrY,
    ZqPixelFormat_YCbCr8_CbYCr,
    ZqPixelFormat_YCbCr601_8_CbYCr,
    ZqPixelFormat_YCbCr709_8_CbYCr,
    ZqPixelFormat_YUV411_8_UYYVYY,
    ZqPixelFormat_YUV422_8_UYVY,
    ZqPixelFormat_YUV8_UYV,
    ZqPixelFormat_YUV422_8,
};

/// True when the pixel is what its format's name says.
bool IsRight(IZqImage& image, const char* format, size_t x, size_t y) {
    const auto pixel =
        ZqTest::LayOutPixel(format, x, y, {image.GetImageLinePitch(), image.GetImagePlanePitch()});
    IZqPixelComponentValue& value = *image.GetIZqPixelComponentValue(x, y);
    if (value.GetCount() != pixel.size())
        return false;
    for (size_t i = 0; i < pixel.size(); ++i) {
        const gcstring name = GetIZqPixelComponentInfo(value.GetPixelComponent(i))->GetName();
        const uint64_t expected = ZqTest::ValueOf(pixel[i], ZqTest::BytesOf(image), ZqTest::SizeOf(image));
        if (name != pixel[i].name.c_str() || value.GetValue(i) != expected)
            return false;
    }
    return true;
}

/// Some thousand pixels, among them those of the borders.
bool AreRight(IZqImage& image, const char* format) {
    for (const size_t y : {size_t{0}, size_t{1}, size_t{2}, HEIGHT / 2, HEIGHT - 2, HEIGHT - 1})
        for (size_t x = 0; x < WIDTH; ++x)
            if ((x < 9 || x % 37 == 0 || x > WIDTH - 9) && !IsRight(image, format, x, y))
                return false;
    return true;
}

/// A sum over everything that the interface tells of the image's pixels.
uint64_t ReadAll(IZqImage& image) {
    uint64_t sum = 0;
    for (size_t y = 0; y < HEIGHT; ++y)
        for (size_t x = 0; x < WIDTH; ++x) {
            IZqPixelComponentValue& value = *image.GetIZqPixelComponentValue(x, y);
            const size_t count = value.GetCount();
            for (size_t i = 0; i < count; ++i)
                sum += value.GetValue(i) + value.GetPixelComponent(i);
        }
    return sum;
}

/// Processor time of this thread; what else the machine does counts as little as possible.
double NowNs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

/// Nanoseconds per pixel in the fastest of some passes.
double Measure(IZqImage& image) {
    double best = 1e9;
    const uint64_t sum = ReadAll(image);
    for (int pass = 0; pass < PASSES; ++pass) {
        const double begin = NowNs();
        const bool same = ReadAll(image) == sum;
        best = std::min(best, same ? (NowNs() - begin) / (WIDTH * HEIGHT) : 1e9);
    }
    return best;
}

bool MeasureFormat(IZqImageBuffer& buffer, EZqPixelFormatNamingConvention_t format) {
    buffer.SetSize(WIDTH, HEIGHT, format, 0);
    IZqImage& image = *buffer.GetIZqImage();
    ZqTest::FillWithPattern(image);
    const gcstring name = GetIZqPixelFormatInfo(format)->GetName();
    if (!AreRight(image, name.c_str())) {
        std::printf("| %s | WRONG |\n", name.c_str());
        return false;
    }
    const double cost = Measure(image);
    std::printf("| %s | %.1f |%s\n", name.c_str(), cost, cost > LIMIT_NS ? " TOO SLOW" : "");
    return cost <= LIMIT_NS;
}

} // namespace

int main() try {
    ZqApiInitialize(ZqApiBuildVersion);
    bool good = true;
    {
        const ZqTest::ImageBuffer buffer = ZqTest::MakeImageBuffer();
        std::printf("| format | ns/pixel |\n|---|---|\n");
        for (const EZqPixelFormatNamingConvention_t format : FORMATS)
            good = MeasureFormat(*buffer, format) && good;
    }
    ZqApiTerminate();
    return good ? 0 : 1;
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
