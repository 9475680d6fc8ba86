#include "tools/zq/ImageFile.h"

#include "tools/zq/Failure.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace ZqTool {

namespace {

using namespace ZqApi;

/// How a pixel format goes into a PNG. Samples of more than 8 bits fill the upper bits of a 16-bit one.
struct PngLayout {
    EZqPixelFormatNamingConvention_t format;
    int colorType;
    int channels;
    int bitDepth;
    int validBits;
    bool blueFirst;
};

constexpr PngLayout pngLayouts[] = {
    {ZqPixelFormat_Mono8, PNG_COLOR_TYPE_GRAY, 1, 8, 8, false},
    {ZqPixelFormat_BayerGR8, PNG_COLOR_TYPE_GRAY, 1, 8, 8, false},
    {ZqPixelFormat_BayerRG8, PNG_COLOR_TYPE_GRAY, 1, 8, 8, false},
    {ZqPixelFormat_BayerGB8, PNG_COLOR_TYPE_GRAY, 1, 8, 8, false},
    {ZqPixelFormat_BayerBG8, PNG_COLOR_TYPE_GRAY, 1, 8, 8, false},
    {ZqPixelFormat_Mono10, PNG_COLOR_TYPE_GRAY, 1, 16, 10, false},
    {ZqPixelFormat_Mono12, PNG_COLOR_TYPE_GRAY, 1, 16, 12, false},
    {ZqPixelFormat_Mono14, PNG_COLOR_TYPE_GRAY, 1, 16, 14, false},
    {ZqPixelFormat_Mono16, PNG_COLOR_TYPE_GRAY, 1, 16, 16, false},
    {ZqPixelFormat_BayerGR16, PNG_COLOR_TYPE_GRAY, 1, 16, 16, false},
    {ZqPixelFormat_BayerRG16, PNG_COLOR_TYPE_GRAY, 1, 16, 16, false},
    {ZqPixelFormat_BayerGB16, PNG_COLOR_TYPE_GRAY, 1, 16, 16, false},
    {ZqPixelFormat_BayerBG16, PNG_COLOR_TYPE_GRAY, 1, 16, 16, false},
    {ZqPixelFormat_RGB8, PNG_COLOR_TYPE_RGB, 3, 8, 8, false},
    {ZqPixelFormat_BGR8, PNG_COLOR_TYPE_RGB, 3, 8, 8, true},
    {ZqPixelFormat_RGBa8, PNG_COLOR_TYPE_RGB_ALPHA, 4, 8, 8, false},
    {ZqPixelFormat_BGRa8, PNG_COLOR_TYPE_RGB_ALPHA, 4, 8, 8, true},
    {ZqPixelFormat_RGB16, PNG_COLOR_TYPE_RGB, 3, 16, 16, false},
};

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

[[noreturn]] void FailOn(const std::filesystem::path& path, const std::string& why) {
    throw Failure("writing " + path.string(), why, "choose another folder with -o, or free some space");
}

[[noreturn]] void FailOn(const std::filesystem::path& path) {
    FailOn(path, std::strerror(errno));
}

File Create(const std::filesystem::path& path) {
    File file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr)
        FailOn(path);
    return file;
}

/// A full disk may show only when the last bytes leave the process.
void Close(File file, const std::filesystem::path& path) {
    if (std::fclose(file.release()) != 0)
        FailOn(path);
}

std::string FormatName(EZqPixelFormatNamingConvention_t format) {
    try {
        return GetIZqPixelFormatInfo(format)->GetName().c_str();
    } catch (const GenICam::GenericException&) {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(format));
        return code;
    }
}

const PngLayout& LayoutOf(EZqPixelFormatNamingConvention_t format) {
    const auto* found = std::find_if(std::begin(pngLayouts), std::end(pngLayouts),
                                     [format](const PngLayout& each) { return each.format == format; });
    if (found == std::end(pngLayouts))
        throw Failure("writing a PNG", "pixel format " + FormatName(format) + " has no PNG equivalent",
                      "write the frames as they are with --format raw, or set the camera to Mono8");
    return *found;
}

/// One line as PNG wants it: 16-bit samples with the high byte first and their valid bits at the top.
void ConvertLine(const PngLayout& layout, const uint8_t* line, std::vector<uint8_t>& converted) {
    if (layout.bitDepth == 8) {
        std::copy_n(line, converted.size(), converted.begin());
        return;
    }
    for (size_t i = 0; i < converted.size(); i += 2) {
        const unsigned sample = (line[i] | line[i + 1] << 8) << (16 - layout.validBits);
        converted[i] = static_cast<uint8_t>(sample >> 8);
        converted[i + 1] = static_cast<uint8_t>(sample);
    }
}

struct Picture {
    const PngLayout& layout;
    const uint8_t* pixels;
    size_t width;
    size_t height;
    size_t pitch;
};

/// libpng reports by longjmp: nothing with a destructor may live in this frame. False on failure.
bool Encode(png_structp png, png_infop info, std::FILE* file, const Picture& picture,
            std::vector<uint8_t>& line) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_init_io(png, file);
    png_set_compression_level(png, 1);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 picture.layout.bitDepth, picture.layout.colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (picture.layout.blueFirst)
        png_set_bgr(png);
    for (size_t y = 0; y < picture.height; ++y) {
        ConvertLine(picture.layout, picture.pixels + y * picture.pitch, line);
        png_write_row(png, line.data());
    }
    png_write_end(png, info);
    return true;
}

void Silence(png_structp, png_const_charp) {}

/// Keeps libpng's words, with the system's when a write failed.
struct PngError {
    char text[200] = "libpng is not usable";
};

[[noreturn]] void Jump(png_structp png, png_const_charp message) {
    auto* error = static_cast<PngError*>(png_get_error_ptr(png));
    std::snprintf(error->text, sizeof error->text, "%s%s%s", message, errno == 0 ? "" : ": ",
                  errno == 0 ? "" : std::strerror(errno));
    png_longjmp(png, 1);
}

void WritePng(IZqImage& image, const std::filesystem::path& path) {
    const PngLayout& layout = LayoutOf(image.GetImagePixelFormat());
    const Picture picture{layout, static_cast<const uint8_t*>(image.GetImageBuffer()), image.GetImageWidth(),
                          image.GetImageHeight(), image.GetImageLinePitch()};
    std::vector<uint8_t> line(picture.width * layout.channels * layout.bitDepth / 8);
    File file = Create(path);
    PngError error;
    errno = 0;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, Jump, Silence);
    png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
    const bool written = info != nullptr && Encode(png, info, file.get(), picture, line);
    png_destroy_write_struct(&png, &info);
    if (!written)
        FailOn(path, error.text);
    Close(std::move(file), path);
}

void WriteRaw(IZqImage& image, const std::filesystem::path& path) {
    const size_t size = image.GetImageLinePitch() * image.GetImageHeight();
    File file = Create(path);
    if (std::fwrite(image.GetImageBuffer(), 1, size, file.get()) != size)
        FailOn(path);
    Close(std::move(file), path);
}

} // namespace

std::filesystem::path WriteImage(IZqImage& image, const std::filesystem::path& folder, uint64_t number,
                                 FileFormat format) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%06llu", static_cast<unsigned long long>(number));
    if (format == FileFormat::Png) {
        const auto path = folder / (std::string(digits) + ".png");
        WritePng(image, path);
        return path;
    }
    const auto path = folder / (std::string(digits) + "_" + std::to_string(image.GetImageWidth()) + "x" +
                                std::to_string(image.GetImageHeight()) + "_" +
                                FormatName(image.GetImagePixelFormat()) + ".raw");
    WriteRaw(image, path);
    return path;
}

} // namespace ZqTool
