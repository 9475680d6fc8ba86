#include "producer/sim/Bytes.h"
#include "producer/sim/PictureFile.h"

#include <algorithm>
#include <cstring>

namespace zqgentl {

namespace {

enum Tag : uint16_t {
    Width = 256,
    Height = 257,
    BitsPerSample = 258,
    Compression = 259,
    Photometric = 262,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    PlanarConfiguration = 284,
};

/// The bytes of the file, each access checked, and the first directory.
class Tiff {
public:
    explicit Tiff(const std::vector<uint8_t>& bytes)
        : m_bytes(bytes), m_order(bytes[0] == 'M' ? ByteOrder::Big : ByteOrder::Little),
          m_directory(Number(4, 4)), m_entries(Number(m_directory, 2)) {}

    [[nodiscard]] uint64_t Number(uint64_t at, size_t size) const {
        return LoadBytes(Range(at, size), size, m_order);
    }
    [[nodiscard]] const uint8_t* Range(uint64_t at, uint64_t size) const {
        if (at > m_bytes.size() || size > m_bytes.size() - at)
            RefusePicture("it ends too early");
        return m_bytes.data() + at;
    }
    /// One of the numbers of a tag; the fallback where the tag is missing.
    [[nodiscard]] uint64_t Value(Tag tag, uint64_t index, uint64_t fallback) const {
        for (uint64_t i = 0; i < m_entries; ++i) {
            const uint64_t entry = m_directory + 2 + 12 * i;
            if (Number(entry, 2) != tag)
                continue;
            const size_t size = Number(entry + 2, 2) == 3 ? 2 : 4;
            const uint64_t count = Number(entry + 4, 4);
            if (index >= count)
                RefusePicture("it has too few strips");
            const uint64_t start = count * size <= 4 ? entry + 8 : Number(entry + 8, 4);
            return Number(start + index * size, size);
        }
        return fallback;
    }
    [[nodiscard]] ByteOrder Order() const noexcept { return m_order; }

private:
    const std::vector<uint8_t>& m_bytes;
    ByteOrder m_order;
    uint64_t m_directory;
    uint64_t m_entries;
};

} // namespace

PictureFile DecodeTiff(const std::vector<uint8_t>& bytes) {
    if (bytes.size() < 8)
        RefusePicture("it ends too early");
    const Tiff tiff(bytes);
    PictureFile picture = MakePicture(tiff.Value(Width, 0, 0), tiff.Value(Height, 0, 0));
    const uint64_t bits = tiff.Value(BitsPerSample, 0, 1);
    const uint64_t samples = tiff.Value(SamplesPerPixel, 0, 1);
    const uint64_t photometric = tiff.Value(Photometric, 0, 1);
    const bool known = tiff.Value(Compression, 0, 1) == 1 && tiff.Value(PlanarConfiguration, 0, 1) == 1 &&
                       (bits == 8 || bits == 16) && photometric <= 2 &&
                       samples >= (photometric == 2 ? 3 : 1) && samples <= 8;
    if (!known)
        RefusePicture("it is packed, planar or of an unknown depth");
    const size_t size = bits / 8;
    const size_t lineSize = picture.width * samples * size;
    const uint64_t rows = std::max<uint64_t>(1, tiff.Value(RowsPerStrip, 0, picture.height));
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    for (uint64_t row = 0; row < picture.height; ++row) {
        const uint64_t strip = tiff.Value(StripOffsets, row / rows, 0);
        const uint8_t* line = tiff.Range(strip + row % rows * lineSize, lineSize);
        for (size_t x = 0; x < picture.width; ++x) {
            for (size_t colour = 0; colour < 3; ++colour) {
                const size_t sample = x * samples + (photometric == 2 ? colour : 0);
                uint64_t value = LoadBytes(line + sample * size, size, tiff.Order()) * (size == 1 ? 257 : 1);
                if (photometric == 0)
                    value = 65535 - value;
                (*planes[colour])[row * picture.width + x] = static_cast<uint16_t>(value);
            }
        }
    }
    return picture;
}

} // namespace zqgentl
