#include "tests/unit/zq/Decoded.h"

#include <png.h>
#include <tiffio.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

unsigned BigEndian(const std::string& bytes, size_t offset) {
    return static_cast<unsigned>(static_cast<uint8_t>(bytes.at(offset)) << 8 |
                                 static_cast<uint8_t>(bytes.at(offset + 1)));
}

unsigned LittleEndian(const std::string& bytes, size_t offset) {
    return static_cast<unsigned>(static_cast<uint8_t>(bytes.at(offset)) |
                                 static_cast<uint8_t>(bytes.at(offset + 1)) << 8);
}

} // namespace

std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Decoded ReadPng(const std::filesystem::path& path) {
    Decoded image;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr)
        return image;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    image.width = png_get_image_width(png, info);
    image.height = png_get_image_height(png, info);
    image.channels = png_get_channels(png, info);
    const size_t bytes = png_get_bit_depth(png, info) / 8;
    image.maximum = bytes == 1 ? 0xFF : 0xFFFF;
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0)
        image.significantBits = image.channels == 1 ? significant->gray : significant->green;
    png_textp texts = nullptr;
    int count = 0;
    png_get_text(png, info, &texts, &count);
    for (int i = 0; i < count; ++i)
        image.texts[texts[i].key] = texts[i].text;
    for (size_t y = 0; y < image.height; ++y) {
        const png_bytep line = png_get_rows(png, info)[y];
        for (size_t i = 0; i < image.width * image.channels; ++i)
            image.samples.push_back(bytes == 1 ? line[i] : line[2 * i] << 8 | line[2 * i + 1]);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return image;
}

Decoded ReadTiff(const std::filesystem::path& path) {
    Decoded image;
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    if (tiff == nullptr)
        return image;
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t channels = 0;
    uint16_t bits = 0;
    char* description = nullptr;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    if (TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &description) == 1)
        image.texts["ImageDescription"] = description;
    image.width = width;
    image.height = height;
    image.channels = channels;
    image.maximum = bits == 8 ? 0xFF : 0xFFFF;
    std::string line(static_cast<size_t>(TIFFScanlineSize(tiff)), '\0');
    for (uint32_t y = 0; y < height; ++y) {
        TIFFReadScanline(tiff, line.data(), y, 0);
        for (size_t i = 0; i < image.width * image.channels; ++i)
            image.samples.push_back(bits == 8 ? static_cast<uint8_t>(line[i]) : LittleEndian(line, 2 * i));
    }
    TIFFClose(tiff);
    return image;
}

Decoded ReadPnm(const std::filesystem::path& path) {
    const std::string bytes = ReadBytes(path);
    std::istringstream head(bytes);
    Decoded image;
    std::string magic;
    std::string comment;
    std::getline(head, magic);
    std::getline(head, comment);
    image.texts["comment"] = comment;
    image.channels = magic == "P5" ? 1 : (magic == "P6" ? 3 : 0);
    head >> image.width >> image.height >> image.maximum;
    size_t offset = static_cast<size_t>(head.tellg()) + 1;
    const size_t size = image.maximum > 255 ? 2 : 1;
    for (; offset < bytes.size(); offset += size)
        image.samples.push_back(size == 1 ? static_cast<uint8_t>(bytes[offset]) : BigEndian(bytes, offset));
    return image;
}

Decoded ReadNpy(const std::filesystem::path& path) {
    const std::string bytes = ReadBytes(path);
    if (bytes.compare(0, 8, std::string("\x93NUMPY\x01\x00", 8)) != 0)
        throw std::runtime_error("no NPY 1.0");
    const size_t begin = 10 + LittleEndian(bytes, 8);
    if (begin % 64 != 0 || bytes.at(begin - 1) != '\n')
        throw std::runtime_error("the array is not aligned");
    const std::string head = bytes.substr(10, begin - 10);
    Decoded image;
    image.texts["header"] = head.substr(0, head.find_last_not_of(" \n") + 1);
    const bool wide = head.find("'descr': '<u2'") != std::string::npos;
    if (!wide && head.find("'descr': '|u1'") == std::string::npos)
        throw std::runtime_error("unknown samples");
    image.maximum = wide ? 0xFFFF : 0xFF;
    std::string shape = head.substr(head.find("'shape': (") + 10);
    char comma = 0;
    std::istringstream numbers(shape);
    numbers >> image.height >> comma >> image.width;
    image.channels = 1;
    if (numbers.get() == ',')
        numbers >> image.channels;
    for (size_t offset = begin; offset < bytes.size(); offset += wide ? 2 : 1)
        image.samples.push_back(wide ? LittleEndian(bytes, offset) : static_cast<uint8_t>(bytes[offset]));
    return image;
}
