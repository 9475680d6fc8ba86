#include "tools/zq/Formats.h"

#include "tools/zq/Failure.h"
#include "tools/zq/SampleLine.h"

#include <tiffio.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace ZqTool {

namespace {

struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, Closer>;

thread_local char lastError[300];

void Keep(const char*, const char* format, va_list arguments) {
    std::vsnprintf(lastError, sizeof lastError, format, arguments);
}

/// libtiff prints to stderr unless told otherwise.
void KeepErrors() {
    static const bool once = [] {
        TIFFSetErrorHandler(Keep);
        TIFFSetWarningHandler(nullptr);
        return true;
    }();
    static_cast<void>(once);
    lastError[0] = '\0';
}

void Check(bool written, const std::filesystem::path& path) {
    if (!written)
        throw Failure("writing " + path.string(), lastError[0] == '\0' ? "libtiff is not usable" : lastError,
                      "choose another folder with -o, or free some space");
}

bool Describe(TIFF* tiff, const Picture& picture) {
    const uint16_t alpha[] = {EXTRASAMPLE_UNASSALPHA};
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(picture.width)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(picture.height)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * picture.BytesPerSample())) == 1 &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(picture.channels)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                        picture.channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, picture.Description().c_str()) == 1 &&
           (picture.channels < 4 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, alpha) == 1);
}

} // namespace

void WriteTiff(const Picture& picture, const std::filesystem::path& path) {
    KeepErrors();
    const Tiff tiff(TIFFOpen(path.c_str(), "wl"));
    Check(tiff != nullptr, path);
    Check(Describe(tiff.get(), picture), path);
    SampleLine line(picture, SampleRange::Whole, ByteOrder::Little);
    for (size_t y = 0; y < picture.height; ++y) {
        std::vector<uint8_t> bytes = line.At(y); // libtiff may swap in place
        Check(TIFFWriteScanline(tiff.get(), bytes.data(), static_cast<uint32_t>(y), 0) == 1, path);
    }
    Check(TIFFFlush(tiff.get()) == 1, path);
}

} // namespace ZqTool
