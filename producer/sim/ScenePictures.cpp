// Pictures of a folder, resized to the region.

#include "producer/sim/SceneParts.h"

namespace zqgentl {

namespace {

/// Which line of a picture of a folder falls on a line of the region.
uint64_t PictureRow(const Scene& scene, const PictureFile& picture, uint32_t row) {
    const uint32_t line = scene.reverseY ? scene.region.height - 1 - row : row;
    return uint64_t{line} * picture.height / scene.region.height;
}

/// A line of one colour that has as many pixels as the region.
void CopyPlane(const uint16_t* from, bool reversed, uint32_t shift, uint16_t* values, size_t width) {
    if (reversed) {
        for (size_t x = 0; x < width; ++x)
            values[x] = static_cast<uint16_t>(from[width - 1 - x] >> shift);
    } else {
        for (size_t x = 0; x < width; ++x)
            values[x] = static_cast<uint16_t>(from[x] >> shift);
    }
}

/// The same of lines that have another number of pixels.
template <size_t Colours>
void ResizePlanes(const uint16_t* const* from, uint32_t fromWidth, bool reversed, uint32_t shift,
                  uint16_t* const* values, uint32_t width) {
    // The source of a column is column * fromWidth / width, here without its division.
    const uint32_t whole = fromWidth / width;
    const uint32_t rest = fromWidth % width;
    size_t source = 0;
    uint32_t part = 0;
    for (uint32_t column = 0; column < width; ++column) {
        const uint32_t x = reversed ? width - 1 - column : column;
        for (size_t colour = 0; colour < Colours; ++colour)
            values[colour][x] = static_cast<uint16_t>(from[colour][source] >> shift);
        part += rest;
        const bool carries = part >= width;
        source += whole + (carries ? 1 : 0);
        part -= carries ? width : 0;
    }
}

} // namespace

ColourLine PictureLine(uint16_t* room, const Scene& scene, uint64_t frameId, uint32_t row, uint32_t bits) {
    const PictureFile& picture = scene.pictures->Of(frameId);
    const uint32_t width = scene.region.width;
    const size_t start = PictureRow(scene, picture, row) * picture.width;
    uint16_t* lines[] = {room, room + width, room + 2 * size_t{width}};
    // Of a grey picture there is one plane alone.
    const uint16_t* const from[] = {picture.red.data() + start,
                                    picture.grey ? nullptr : picture.green.data() + start,
                                    picture.grey ? nullptr : picture.blue.data() + start};
    const uint32_t shift = 16 - bits;
    if (picture.width == width) {
        for (size_t colour = 0; colour < (picture.grey ? 1 : 3); ++colour)
            CopyPlane(from[colour], scene.reverseX, shift, lines[colour], width);
    } else if (picture.grey) {
        ResizePlanes<1>(from, picture.width, scene.reverseX, shift, lines, width);
    } else {
        ResizePlanes<3>(from, picture.width, scene.reverseX, shift, lines, width);
    }
    if (picture.grey)
        return {room, room, room};
    return {lines[0], lines[1], lines[2]};
}

bool RepeatsLineBefore(const Scene& scene, uint64_t frameId, uint32_t row) {
    if (scene.pattern != TestPattern::Picture || scene.pictures == nullptr || row == 0)
        return false;
    const PictureFile& picture = scene.pictures->Of(frameId);
    return PictureRow(scene, picture, row) == PictureRow(scene, picture, row - 1);
}

} // namespace zqgentl
