// PNG files as libpng writes them, line by line and in seven passes.

#include "producer/sim/Failure.h"
#include "producer/sim/PictureFile.h"

#include <gtest/gtest.h>
#include <png.h>

using namespace zqgentl;

namespace {

constexpr png_uint_32 width = 13;
constexpr png_uint_32 height = 11;

struct Kind {
    const char* name;
    int bits;
    int colour;
    size_t lineSize;
};
const Kind kinds[] = {
    {"grey of 8 bits", 8, PNG_COLOR_TYPE_GRAY, width},
    {"grey of 16 bits", 16, PNG_COLOR_TYPE_GRAY, 2 * width},
    {"grey of 2 bits", 2, PNG_COLOR_TYPE_GRAY, (width + 3) / 4},
    {"colour", 8, PNG_COLOR_TYPE_RGB, 3 * width},
    {"colour of 16 bits with alpha", 16, PNG_COLOR_TYPE_RGB_ALPHA, 8 * width},
    {"palette of 4 bits", 4, PNG_COLOR_TYPE_PALETTE, (width + 1) / 2},
};

void Append(png_structp png, png_bytep bytes, png_size_t size) {
    auto* file = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
    file->insert(file->end(), bytes, bytes + size);
}

/// A file whose lines have bytes that differ everywhere.
std::vector<uint8_t> Encode(const Kind& kind, int interlace) {
    std::vector<uint8_t> file;
    std::vector<std::vector<uint8_t>> lines(height, std::vector<uint8_t>(kind.lineSize));
    std::vector<png_bytep> rows;
    for (size_t y = 0; y < height; ++y) {
        for (size_t i = 0; i < kind.lineSize; ++i)
            lines[y][i] = static_cast<uint8_t>(37 * y + 11 * i + 1);
        rows.push_back(lines[y].data());
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, Append, nullptr);
    png_set_IHDR(png, info, width, height, kind.bits, kind.colour, interlace, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_color palette[16];
    for (size_t i = 0; i < 16; ++i)
        palette[i] = {static_cast<png_byte>(i), static_cast<png_byte>(100 + i),
                      static_cast<png_byte>(255 - i)};
    if (kind.colour == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, palette, 16);
    png_write_info(png, info);
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

} // namespace

TEST(InterlacedPng, ShowsWhatTheSameFileDoesLineByLine) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const PictureFile plain = DecodePicture(Encode(kind, PNG_INTERLACE_NONE));
        const PictureFile interlaced = DecodePicture(Encode(kind, PNG_INTERLACE_ADAM7));
        EXPECT_EQ(interlaced.width, width);
        EXPECT_EQ(interlaced.height, height);
        EXPECT_EQ(interlaced.red, plain.red);
        EXPECT_EQ(interlaced.green, plain.green);
        EXPECT_EQ(interlaced.blue, plain.blue);
    }
}

TEST(InterlacedPng, ShowsItsValues) {
    const PictureFile picture = DecodePicture(Encode(kinds[0], PNG_INTERLACE_ADAM7));
    for (size_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < width; ++x)
            EXPECT_EQ(picture.green[y * width + x], static_cast<uint8_t>(37 * y + 11 * x + 1) * 257);
    }
}

TEST(InterlacedPng, ThatEndsInAnyPassIsRefused) {
    const std::vector<uint8_t> file = Encode(kinds[3], PNG_INTERLACE_ADAM7);
    // What is compressed ends 16 bytes before the file, which the reader doesn't look at.
    for (size_t size = 8; size + 17 < file.size(); ++size)
        EXPECT_THROW(DecodePicture({file.begin(), file.begin() + static_cast<ptrdiff_t>(size)}), Failure)
            << size;
}
