#include "tools/zq/Formats.h"

#include "tools/zq/OutputFile.h"
#include "tools/zq/SampleLine.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstring>

namespace ZqTool {

namespace {

/// Texts of the file; libpng wants them writable.
struct Texts {
    std::string formatKey = "PixelFormat";
    std::string format;
    std::string phaseKey = "BayerPhase";
    std::string phase;
    png_text entries[2]{};
    int count = 1;

    explicit Texts(const Picture& picture) : format(picture.pixelFormat), phase(picture.bayerPhase) {
        Set(entries[0], formatKey, format);
        Set(entries[1], phaseKey, phase);
        count += phase.empty() ? 0 : 1;
    }

private:
    static void Set(png_text& entry, std::string& key, std::string& text) {
        entry.compression = PNG_TEXT_COMPRESSION_NONE;
        entry.key = key.data();
        entry.text = text.data();
        entry.text_length = text.size();
    }
};

int ColourTypeOf(const Picture& picture) {
    return picture.channels == 1 ? PNG_COLOR_TYPE_GRAY
                                 : (picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA);
}

void Describe(png_structp png, png_infop info, const Picture& picture, Texts& texts) {
    const auto bits = static_cast<png_byte>(picture.bits);
    const png_color_8 significant{bits, bits, bits, bits, bits};
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 static_cast<int>(8 * picture.BytesPerSample()), ColourTypeOf(picture), PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sBIT(png, info, &significant);
    png_set_text(png, info, texts.entries, texts.count);
    png_write_info(png, info);
}

/// libpng reports by longjmp: nothing with a destructor may live in this frame. False on failure.
bool Encode(png_structp png, png_infop info, std::FILE* file, const Picture& picture, Texts& texts,
            SampleLine& line) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_init_io(png, file);
    // Pictures of cameras hardly get smaller by more effort, only later.
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    Describe(png, info, picture, texts);
    for (size_t y = 0; y < picture.height; ++y)
        png_write_row(png, line.At(y).data());
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

} // namespace

void WritePng(const Picture& picture, const std::filesystem::path& path) {
    SampleLine line(picture, SampleRange::Whole, ByteOrder::Big);
    Texts texts(picture);
    OutputFile file(path);
    PngError error;
    errno = 0;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, Jump, Silence);
    png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
    const bool written = info != nullptr && Encode(png, info, file.Stream(), picture, texts, line);
    png_destroy_write_struct(&png, &info);
    if (!written)
        file.Fail(error.text);
    file.Close();
}

} // namespace ZqTool
