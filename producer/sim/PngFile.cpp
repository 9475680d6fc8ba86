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
    int interlace = 0;
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
    png_get_IHDR(png, info, &header.width, &header.height, &bits, &header.colour, &header.interlace, nullptr,
                 nullptr);
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
    void Next(std::vector<uint8_t>& line) { Require(ReadLine(m_png, line.data())); }

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

uint16_t ColourAt(const Header& header, const std::vector<uint8_t>& line, size_t x, size_t colour) {
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

} // namespace

PictureFile DecodePng(const std::vector<uint8_t>& bytes) {
    Reader reader(bytes);
    const Header& header = reader.About();
    if (header.interlace != PNG_INTERLACE_NONE)
        RefusePicture("it is interlaced");
    PictureFile picture = MakePicture(header.width, header.height);
    std::vector<uint8_t> line(reader.LineSize());
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    for (size_t start = 0; start < picture.red.size(); start += picture.width) {
        reader.Next(line);
        for (size_t x = 0; x < picture.width; ++x) {
            for (size_t colour = 0; colour < 3; ++colour)
                (*planes[colour])[start + x] = ColourAt(header, line, x, colour);
        }
    }
    return picture;
}

} // namespace zqgentl
