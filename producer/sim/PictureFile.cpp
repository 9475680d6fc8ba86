#include "producer/sim/PictureFile.h"

#include "producer/sim/Bytes.h"
#include "producer/sim/Failure.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zqgentl {

namespace {

/// Numbers and words of a header in text, with comments between them.
class PnmHeader {
public:
    explicit PnmHeader(const std::vector<uint8_t>& bytes) : m_bytes(bytes) {}

    uint64_t Number() {
        Skip();
        uint64_t number = 0;
        const size_t start = m_next;
        while (m_next < m_bytes.size() && std::isdigit(m_bytes[m_next]) != 0 && m_next - start < 9)
            number = number * 10 + (m_bytes[m_next++] - '0');
        if (m_next == start)
            RefusePicture("the header has no number where one belongs");
        return number;
    }
    /// Behind the one blank that ends the header.
    [[nodiscard]] size_t End() const { return m_next + 1; }

private:
    void Skip() {
        while (m_next < m_bytes.size() && (std::isspace(m_bytes[m_next]) != 0 || m_bytes[m_next] == '#')) {
            if (m_bytes[m_next] == '#') {
                while (m_next < m_bytes.size() && m_bytes[m_next] != '\n')
                    ++m_next;
            } else {
                ++m_next;
            }
        }
    }

    const std::vector<uint8_t>& m_bytes;
    size_t m_next = 2;
};

bool StartsWith(const std::vector<uint8_t>& bytes, const char* start, size_t size) {
    return bytes.size() >= size && std::memcmp(bytes.data(), start, size) == 0;
}

} // namespace

void RefusePicture(const std::string& why) {
    throw Failure(GenTL::GC_ERR_INVALID_VALUE, "a picture can't be read: " + why);
}

PictureFile MakePicture(uint64_t width, uint64_t height) {
    if (width == 0 || height == 0 || width > pictureSideMax || height > pictureSideMax)
        RefusePicture("its size is " + std::to_string(width) + " x " + std::to_string(height));
    PictureFile picture;
    picture.width = static_cast<uint32_t>(width);
    picture.height = static_cast<uint32_t>(height);
    for (auto* plane : {&picture.red, &picture.green, &picture.blue})
        plane->resize(width * height);
    return picture;
}

PictureFile DecodePnm(const std::vector<uint8_t>& bytes) {
    PnmHeader header(bytes);
    const size_t colours = bytes[1] == '6' ? 3 : 1;
    const uint64_t width = header.Number();
    const uint64_t height = header.Number();
    const uint64_t highest = header.Number();
    if (highest == 0 || highest > 65535)
        RefusePicture("its highest value is " + std::to_string(highest));
    PictureFile picture = MakePicture(width, height);
    const size_t valueSize = highest > 255 ? 2 : 1;
    const size_t count = picture.red.size() * colours;
    if (header.End() > bytes.size() || bytes.size() - header.End() < count * valueSize)
        RefusePicture("it ends too early");
    const uint8_t* next = bytes.data() + header.End();
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    for (size_t i = 0; i < picture.red.size(); ++i) {
        for (size_t colour = 0; colour < 3; ++colour) {
            const size_t offset = (i * colours + (colours == 3 ? colour : 0)) * valueSize;
            const uint64_t value = LoadBytes(next + offset, valueSize, ByteOrder::Big);
            (*planes[colour])[i] = static_cast<uint16_t>(std::min(value, highest) * 65535 / highest);
        }
    }
    return picture;
}

PictureFile DecodePicture(const std::vector<uint8_t>& bytes) {
    if (StartsWith(bytes, "\x89PNG\r\n\x1A\n", 8))
        return DecodePng(bytes);
    if (StartsWith(bytes, "P5", 2) || StartsWith(bytes, "P6", 2))
        return DecodePnm(bytes);
    if (StartsWith(bytes, "II*\0", 4) || StartsWith(bytes, "MM\0*", 4))
        return DecodeTiff(bytes);
    RefusePicture("it is no PNG, PGM, PPM or TIFF file");
}

} // namespace zqgentl
