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
#include "tools/zq/PixelFormats.h"

namespace {

using namespace ZqApi;

constexpr size_t WIDTH = 1920;
constexpr size_t HEIGHT = 1080;
constexpr double LIMIT_NS = 40;
constexpr int PASSES = 3;

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
        for (const EZqPixelFormatNamingConvention_t format : ZqTool::AllPixelFormats())
            good = MeasureFormat(*buffer, format) && good;
    }
    ZqApiTerminate();
    return good ? 0 : 1;
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
