#include "producer/sim/PictureFile.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace zqgentl {

namespace {

/// A file in memory as libtiff wants it, and its words when it gives up.
struct Source {
    const std::vector<uint8_t>& bytes;
    uint64_t next = 0;
    char error[120] = "libtiff is not usable";
};

Source& SourceOf(thandle_t handle) {
    return *static_cast<Source*>(handle);
}

tmsize_t Fetch(thandle_t handle, void* target, tmsize_t size) {
    Source& source = SourceOf(handle);
    const uint64_t end = source.bytes.size();
    const uint64_t count = std::min<uint64_t>(static_cast<uint64_t>(size), end - std::min(end, source.next));
    if (count > 0)
        std::memcpy(target, source.bytes.data() + source.next, count);
    source.next += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t Refuse(thandle_t, void*, tmsize_t) {
    return 0;
}

toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    Source& source = SourceOf(handle);
    if (whence == SEEK_CUR)
        offset += source.next;
    else if (whence == SEEK_END)
        offset += source.bytes.size();
    return source.next = offset;
}

int Close(thandle_t) {
    return 0;
}

toff_t Size(thandle_t handle) {
    return SourceOf(handle).bytes.size();
}

struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, Closer>;

#if TIFFLIB_VERSION >= 20221213
int Keep(TIFF*, void* user, const char*, const char* format, va_list arguments) {
    auto* source = static_cast<Source*>(user);
    std::vsnprintf(source->error, sizeof source->error, format, arguments);
    return 1;
}

int Silence(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

/// The handlers are this file's alone: those of the process belong to the application.
Tiff Open(Source& source) {
    // A strip is no longer than its file; the rest is for what libtiff rounds up and for its tables.
    const auto memoryMax = static_cast<tmsize_t>(source.bytes.size() + (size_t{1} << 20));
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(TIFFOpenOptionsAlloc(),
                                                                               TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Keep, &source);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silence, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), memoryMax);
    return Tiff(TIFFClientOpenExt("picture", "rm", &source, Fetch, Refuse, Seek, Close, Size, nullptr,
                                  nullptr, options.get()));
}
#else
Tiff Open(Source& source) {
    return Tiff(TIFFClientOpen("picture", "rm", &source, Fetch, Refuse, Seek, Close, Size, nullptr, nullptr));
}
#endif

template <class T>
T Field(const Tiff& tiff, ttag_t tag, T fallback = 0) {
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff.get(), tag, &value) == 1 ? value : fallback;
}

bool IsPackingKnown(uint16_t packing) {
    for (const int known : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE,
                            COMPRESSION_PACKBITS}) {
        if (packing == known)
            return true;
    }
    return false;
}

struct Layout {
    uint16_t bits;
    uint16_t samples;
    uint16_t photometric;
};

Layout LayoutOf(const Tiff& tiff) {
    const Layout layout{Field<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE),
                        Field<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL),
                        Field<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK)};
    const bool known =
        IsPackingKnown(Field<uint16_t>(tiff, TIFFTAG_COMPRESSION)) &&
        Field<uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG && TIFFIsTiled(tiff.get()) == 0 &&
        (layout.bits == 8 || layout.bits == 16) && layout.photometric <= PHOTOMETRIC_RGB &&
        layout.samples >= (layout.photometric == PHOTOMETRIC_RGB ? 3 : 1) && layout.samples <= 8;
    if (!known)
        RefusePicture("it is planar, tiled or of an unknown depth or packing");
    return layout;
}

/// libtiff has put samples of 16 bits into the order of this machine.
uint16_t SampleAt(const Layout& layout, const std::vector<uint8_t>& line, size_t index) {
    if (layout.bits == 8)
        return static_cast<uint16_t>(line[index] * 257);
    uint16_t sample = 0;
    std::memcpy(&sample, &line[2 * index], sizeof sample);
    return sample;
}

} // namespace

PictureFile DecodeTiff(const std::vector<uint8_t>& bytes) {
    Source source{bytes};
    const Tiff tiff = Open(source);
    if (tiff == nullptr)
        RefusePicture(source.error);
    PictureFile picture =
        MakePicture(Field<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH), Field<uint32_t>(tiff, TIFFTAG_IMAGELENGTH));
    const Layout layout = LayoutOf(tiff);
    std::vector<uint8_t> line(size_t{picture.width} * layout.samples * layout.bits / 8);
    if (TIFFScanlineSize(tiff.get()) != static_cast<tmsize_t>(line.size()))
        RefusePicture("its lines have another length than its size says");
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    for (uint32_t row = 0; row < picture.height; ++row) {
        if (TIFFReadScanline(tiff.get(), line.data(), row) != 1)
            RefusePicture(source.error);
        for (size_t x = 0; x < picture.width; ++x) {
            for (size_t colour = 0; colour < 3; ++colour) {
                const size_t channel = layout.photometric == PHOTOMETRIC_RGB ? colour : 0;
                const uint16_t value = SampleAt(layout, line, x * layout.samples + channel);
                const bool inverted = layout.photometric == PHOTOMETRIC_MINISWHITE;
                (*planes[colour])[size_t{row} * picture.width + x] =
                    static_cast<uint16_t>(inverted ? 65535 - value : value);
            }
        }
    }
    return picture;
}

} // namespace zqgentl
