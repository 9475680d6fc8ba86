#include "producer/sim/PictureFile.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

namespace zqgentl {

namespace {

/// The bytes of a file on their way to libpng, and its words when it gives up.
struct Source {
    const uint8_t* next;
    size_t left;
    char error[120] = "libpng is not usable";
};

struct Header {
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    int colour = 0;
    int passes = 1; ///< over all lines, of an interlaced file
    png_colorp palette = nullptr;
    int colours = 0;
};

[[noreturn]] void Jump(png_structp png, png_const_charp message) {
    auto* source = static_cast<Source*>(png_get_error_ptr(png));
    std::snprintf(source->error, sizeof source->error, "%s", message);
    png_longjmp(png, 1);
}

void Silence(png_structp, png_const_charp) {}

void Fetch(png_structp png, png_bytep target, png_size_t size) {
    auto* source = static_cast<Source*>(png_get_io_ptr(png));
    if (size > source->left)
        png_error(png, "it ends too early");
    std::memcpy(target, source->next, size);
    source->next += size;
    source->left -= size;
}

/// libpng reports by longjmp: nothing with a destructor may live in the frames of the next two. False on
/// failure.
bool ReadHeader(png_structp png, png_infop info, Source& source, Header& header) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_read_fn(png, &source, Fetch);
    png_set_user_limits(png, pictureSideMax, pictureSideMax);
    png_read_info(png, info);
    int bits = 0;
    png_get_IHDR(png, info, &header.width, &header.height, &bits, &header.colour, nullptr, nullptr, nullptr);
    png_get_PLTE(png, info, &header.palette, &header.colours);
    if (header.colour == PNG_COLOR_TYPE_PALETTE) {
        png_set_packing(png); // indexes of a byte each, so that they can be checked
    } else {
        if (header.colour == PNG_COLOR_TYPE_GRAY)
            png_set_expand_gray_1_2_4_to_8(png);
        png_set_gray_to_rgb(png);
        png_set_strip_alpha(png);
        png_set_expand_16(png);
    }
    header.passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    return true;
}

bool ReadLine(png_structp png, png_bytep line) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_read_row(png, line, nullptr);
    return true;
}

/// A reader that goes when it is left, whichever way.
class Reader {
public:
    explicit Reader(const std::vector<uint8_t>& bytes) : m_source{bytes.data(), bytes.size()} {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_source, Jump, Silence);
        m_info = m_png == nullptr ? nullptr : png_create_info_struct(m_png);
        Require(m_info != nullptr && ReadHeader(m_png, m_info, m_source, m_header));
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { Close(); }

    [[nodiscard]] const Header& About() const noexcept { return m_header; }
    [[nodiscard]] size_t LineSize() const { return png_get_rowbytes(m_png, m_info); }
    /// The next line; of a later pass, what it adds to the line that is there.
    void Next(uint8_t* line) { Require(ReadLine(m_png, line)); }

private:
    void Require(bool done) {
        if (done)
            return;
        Close();
        RefusePicture(m_source.error);
    }
    void Close() noexcept { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    Source m_source;
    Header m_header;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

uint16_t ColourAt(const Header& header, const uint8_t* line, size_t x, size_t colour) {
    if (header.colour != PNG_COLOR_TYPE_PALETTE) {
        const uint8_t* sample = &line[6 * x + 2 * colour];
        return static_cast<uint16_t>(sample[0] << 8 | sample[1]);
    }
    if (line[x] >= header.colours)
        RefusePicture("a colour is not in its palette");
    const png_color& entry = header.palette[line[x]];
    const png_byte levels[] = {entry.red, entry.green, entry.blue};
    return static_cast<uint16_t>(levels[colour] * 257);
}

void Store(const Header& header, const uint8_t* line, size_t y, PictureFile& picture) {
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    const size_t start = y * picture.width;
    for (size_t x = 0; x < picture.width; ++x) {
        for (size_t colour = 0; colour < 3; ++colour)
            (*planes[colour])[start + x] = ColourAt(header, line, x, colour);
    }
}

} // namespace

PictureFile DecodePng(const std::vector<uint8_t>& bytes) {
    Reader reader(bytes);
    const Header& header = reader.About();
    PictureFile picture = MakePicture(header.width, header.height);
    // A line of an interlaced file is complete after the last pass only.
    const size_t kept = header.passes > 1 ? picture.height : 1;
    std::vector<uint8_t> lines(reader.LineSize() * kept);
    const auto lineAt = [&](size_t y) { return &lines[reader.LineSize() * (y % kept)]; };
    for (int pass = 1; pass < header.passes; ++pass) {
        for (size_t y = 0; y < picture.height; ++y)
            reader.Next(lineAt(y));
    }
    for (size_t y = 0; y < picture.height; ++y) {
        reader.Next(lineAt(y));
        Store(header, lineAt(y), y, picture);
    }
    return picture;
}

} // namespace zqgentl
