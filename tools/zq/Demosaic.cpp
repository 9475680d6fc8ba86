#include "tools/zq/Demosaic.h"

namespace ZqTool {

namespace {

enum Channel { Red, Green, Blue };

/// A pixel with its neighbours. Beyond an edge the picture is mirrored, which keeps the colours in place.
struct Neighbourhood {
    const uint16_t* above;
    const uint16_t* line;
    const uint16_t* below;
    size_t left;
    size_t x;
    size_t right;

    [[nodiscard]] uint16_t Beside() const { return Mean(line[left], line[right]); }
    [[nodiscard]] uint16_t Over() const { return Mean(above[x], below[x]); }
    [[nodiscard]] uint16_t Cross() const { return Mean(line[left], line[right], above[x], below[x]); }
    [[nodiscard]] uint16_t Corners() const {
        return Mean(above[left], above[right], below[left], below[right]);
    }

    static uint16_t Mean(unsigned a, unsigned b) { return static_cast<uint16_t>((a + b + 1) / 2); }
    static uint16_t Mean(unsigned a, unsigned b, unsigned c, unsigned d) {
        return static_cast<uint16_t>((a + b + c + d + 2) / 4);
    }
};

/// The neighbour's index, mirrored at both ends; 0 where there is no other.
size_t Before(size_t i, size_t count) {
    return i > 0 ? i - 1 : (count > 1 ? 1 : 0);
}
size_t Behind(size_t i, size_t count) {
    return i + 1 < count ? i + 1 : (i > 0 ? i - 1 : 0);
}

/// `own` is the line's colour that is not green.
void Interpolate(const Neighbourhood& at, bool green, Channel own, uint16_t* rgb) {
    const Channel other = own == Red ? Blue : Red;
    if (green) {
        rgb[own] = at.Beside();
        rgb[Green] = at.line[at.x];
        rgb[other] = at.Over();
    } else {
        rgb[own] = at.line[at.x];
        rgb[Green] = at.Cross();
        rgb[other] = at.Corners();
    }
}

} // namespace

Picture Demosaic(Picture mosaic) {
    if (mosaic.bayerPhase.empty())
        return mosaic;
    const bool greenFirst = mosaic.bayerPhase[0] == 'G';
    const bool redFirst = mosaic.bayerPhase[greenFirst ? 1 : 0] == 'R';
    const size_t width = mosaic.width;
    std::vector<uint16_t> colours(width * mosaic.height * 3);
    uint16_t* out = colours.data();
    for (size_t y = 0; y < mosaic.height; ++y) {
        Neighbourhood at{mosaic.Line(Before(y, mosaic.height)),
                         mosaic.Line(y),
                         mosaic.Line(Behind(y, mosaic.height)),
                         0,
                         0,
                         0};
        const bool evenLine = y % 2 == 0;
        const Channel own = redFirst == evenLine ? Red : Blue;
        for (size_t x = 0; x < width; ++x, out += 3) {
            at.left = Before(x, width);
            at.x = x;
            at.right = Behind(x, width);
            Interpolate(at, (x % 2 == 0) == (greenFirst == evenLine), own, out);
        }
    }
    mosaic.channels = 3;
    mosaic.bayerPhase.clear();
    mosaic.samples = std::move(colours);
    return mosaic;
}

} // namespace ZqTool
