// Draws the test chart of every pixel format that has one and writes it as <folder>/<format>.png, 320 x 240
// pixels, each value brought to 8 bits. No camera is needed.
#include <ZqApi/ZqApi.h>

#include <png.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace ZqApi;

constexpr size_t WIDTH = 320;
constexpr size_t HEIGHT = 240;

constexpr EZqPixelFormatNamingConvention_t FORMATS[] = {
    ZqPixelFormat_Mono8,  ZqPixelFormat_Mono10, ZqPixelFormat_Mono12, ZqPixelFormat_Mono14,
    ZqPixelFormat_Mono16, ZqPixelFormat_BGR8,   ZqPixelFormat_BGR10,  ZqPixelFormat_BGR12,
    ZqPixelFormat_BGR14,  ZqPixelFormat_BGR16,  ZqPixelFormat_BGRa8,  ZqPixelFormat_BGRa10,
    ZqPixelFormat_BGRa12, ZqPixelFormat_BGRa14, ZqPixelFormat_BGRa16, ZqPixelFormat_RGB8,
    ZqPixelFormat_RGBa8};

/// Red, green and blue of every pixel, or grey.
std::vector<uint8_t> ValuesOf(IZqImage& image) {
    const IZqPixelFormatInfo& info = *GetIZqPixelFormatInfo(image.GetImagePixelFormat());
    const size_t excess = info.GetEachComponentValidBitCount() - 8;
    std::vector<uint8_t> values;
    for (size_t y = 0; y < HEIGHT; ++y)
        for (size_t x = 0; x < WIDTH; ++x) {
            IZqPixelComponentValue& pixel = *image.GetIZqPixelComponentValue(x, y);
            const size_t count = pixel.GetCount();
            for (size_t i = 0; i < count; ++i)
                values.push_back(
                    static_cast<uint8_t>(pixel.GetValue(info.IsBGROrder() ? count - 1 - i : i) >> excess));
        }
    return values;
}

bool WritePng(const std::string& path, const std::vector<uint8_t>& values) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = WIDTH;
    png.height = HEIGHT;
    png.format = values.size() == WIDTH * HEIGHT ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
    if (png_image_write_to_file(&png, path.c_str(), 0, values.data(), 0, nullptr) != 0)
        return true;
    std::fprintf(stderr, "%s: %s\n", path.c_str(), png.message);
    return false;
}

bool WriteChart(IZqImageBuffer& buffer, EZqPixelFormatNamingConvention_t format, const std::string& folder) {
    // A chart leaves alpha and the ends of lines as they are.
    buffer.CreateBuffer(WIDTH, HEIGHT, format, ZqMemoryInitialization_ZeroFill);
    buffer.CreateBuffer(WIDTH, HEIGHT, format, ZqMemoryInitialization_TestChart);
    const gcstring name = GetIZqPixelFormatInfo(format)->GetName();
    return WritePng(folder + "/" + name.c_str() + ".png", ValuesOf(*buffer.GetIZqImage()));
}

} // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        std::fprintf(stderr, "usage: %s <folder>\n", arguments[0]);
        return 2;
    }
    ZqApiInitialize(ZqApiBuildVersion);
    IZqImageBufferReleasable* const buffer = CreateIZqImageBuffer(nullptr);
    bool written = true;
    for (const EZqPixelFormatNamingConvention_t format : FORMATS)
        written = WriteChart(*buffer, format, arguments[1]) && written;
    buffer->Release();
    ZqApiTerminate();
    return written ? 0 : 1;
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
