#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// Where the bits of a pixel lie, worked out from the name of its format: bit by bit, so that it shares no
/// shift, mask or table with what it is compared to.
namespace ZqTest {

/// One component and its bits, lowest first, as numbers of bits in the image (bit 0 of byte 0 is 0).
struct LaidOutComponent {
    std::string name;
    std::vector<size_t> bits;
};
using LaidOutPixel = std::vector<LaidOutComponent>;

struct Pitches {
    size_t line;
    size_t plane;
};

namespace Layout {

inline bool Begins(const std::string& name, const std::string& prefix) {
    return name.compare(0, prefix.size(), prefix) == 0;
}

inline bool Ends(const std::string& name, const std::string& suffix) {
    return name.size() >= suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

/// The first number in the name.
inline size_t NumberIn(const std::string& name) {
    return std::stoul(name.substr(name.find_first_of("0123456789")));
}

inline std::vector<size_t> Run(size_t first, size_t count) {
    std::vector<size_t> bits;
    for (size_t bit = first; bit < first + count; ++bit)
        bits.push_back(bit);
    return bits;
}

/// The colour of a mosaic's pixel: the letters name its first two, the next line has the green one on the
/// other side and the third colour beside it.
inline std::string ColourAt(const std::string& letters, size_t x, size_t y) {
    const bool greenFirst = letters[0] == 'G';
    const char lineColour = greenFirst ? letters[1] : letters[0];
    const char otherColour = lineColour == 'R' ? 'B' : 'R';
    const char here = y % 2 == 0 ? lineColour : otherColour;
    const bool greenHere = (x % 2 == 0) == (greenFirst == (y % 2 == 0));
    return greenHere ? (here == 'R' ? "Gr" : "Gb") : std::string(1, here);
}

/// Monochrome and mosaics: the name says the depth, and "p" or "Packed" how the samples follow each other.
inline LaidOutPixel SingleSample(const std::string& full, size_t x, size_t y, size_t line) {
    const bool gev = Begins(full, "GVSP_");
    const std::string name = gev ? full.substr(5) : full;
    const size_t depth = NumberIn(name);
    const std::string kind = Begins(name, "Mono") ? "Mono" : ColourAt(name.substr(5, 2), x, y);
    std::vector<size_t> bits;
    if (gev) {
        // Three bytes for two pixels: the outer ones are their upper eight bits, the middle one has the rest
        // of the left pixel in its upper half and that of the right pixel in its lower half.
        const size_t group = line + x / 2 * 24;
        bits = Run(group + 8 + (x % 2 == 0 ? 4 : 0), depth - 8);
        for (const size_t bit : Run(group + (x % 2 == 0 ? 0 : 16), 8))
            bits.push_back(bit);
    } else if (Ends(name, "p")) {
        bits = Run(line + x * depth, depth);
    } else {
        const size_t container = depth > 8 ? 16 : 8;
        bits = Run(line + x * container, container);
    }
    return {{kind + std::to_string(depth), bits}};
}

/// Red, green and blue in the order of the name.
inline LaidOutPixel Colours(const std::string& full, size_t x, size_t y, const Pitches& pitches) {
    const std::string name = full[0] == 'C' ? full.substr(1) : full;
    const size_t depth = NumberIn(name);
    const bool planar = Ends(name, "_Planar");
    const bool packed = Ends(name, "p");
    const bool padded = Ends(name, "p32");
    const size_t container = packed || padded ? depth : depth > 8 ? 16 : 8;
    const size_t samples = name[3] == 'a' ? 4 : planar ? 1 : 3;
    const size_t pixel = padded ? 32 : samples * container;
    LaidOutPixel components;
    for (size_t i = 0; i < 3; ++i) {
        const size_t begin = 8 * (y * pitches.line + (planar ? i * pitches.plane : 0)) + x * pixel +
                             (planar ? 0 : i * container);
        components.push_back({std::string(1, name[i]) + std::to_string(depth), Run(begin, container)});
    }
    return components;
}

/// Luma and chroma: the bytes of a pixel, counted from the beginning of its line.
inline LaidOutPixel LumaChroma(const std::string& name, size_t x, size_t line) {
    const bool yuv = Begins(name, "YUV");
    const std::string chroma1 = yuv ? "U8" : "Cb8";
    const std::string chroma2 = yuv ? "V8" : "Cr8";
    const auto byte = [line](size_t offset) { return Run(line + 8 * offset, 8); };
    const bool chromaFirst = Ends(name, "CbYCrY") || Ends(name, "CbYYCrYY") || Ends(name, "CbYCr") ||
                             Ends(name, "UYVY") || Ends(name, "UYYVYY") || Ends(name, "UYV");
    if (name.find("422") != std::string::npos) {
        // Four bytes for two pixels.
        const size_t pair = x / 2 * 4;
        const size_t shift = chromaFirst ? 1 : 0;
        return {{"Y8", byte(pair + shift + x % 2 * 2)},
                {chroma1, byte(pair + 1 - shift)},
                {chroma2, byte(pair + 3 - shift)}};
    }
    if (name.find("411") != std::string::npos) {
        // Six bytes for four pixels: C Y Y C Y Y, or, with a known fault, Y Y C . . Y and the Y behind.
        const size_t group = x / 4 * 6;
        const size_t regular[] = {1, 2, 4, 5};
        const size_t faulty[] = {0, 1, 5, 6};
        const size_t place = x % 4;
        return {{"Y8", byte(group + (chromaFirst ? regular[place] : faulty[place]))},
                {chroma1, byte(group + (chromaFirst ? 0 : 2))},
                {chroma2, byte(group + (chromaFirst ? 3 : 5))}};
    }
    // Known fault: every fourth pixel is looked for 16 bytes further on and stands for its three neighbours.
    const size_t group = x / 4 * 16;
    if (chromaFirst)
        return {{chroma1, byte(group)}, {"Y8", byte(group + 1)}, {chroma2, byte(group + 2)}};
    return {{"Y8", byte(group)}, {chroma1, byte(group + 1)}, {chroma2, byte(group + 2)}};
}

} // namespace Layout

inline LaidOutPixel LayOutPixel(const std::string& name, size_t x, size_t y, const Pitches& pitches) {
    const size_t line = 8 * y * pitches.line;
    if (Layout::Begins(name, "Mono") || Layout::Begins(name, "Bayer") || Layout::Begins(name, "GVSP_"))
        return Layout::SingleSample(name, x, y, line);
    if (Layout::Begins(name, "YCbCr") || Layout::Begins(name, "YUV"))
        return Layout::LumaChroma(name, x, line);
    return Layout::Colours(name, x, y, pitches);
}

/// The component's value in memory of that size; what lies behind it counts as 0.
inline uint64_t ValueOf(const LaidOutComponent& component, const uint8_t* memory, size_t size) {
    uint64_t value = 0;
    for (size_t i = 0; i < component.bits.size(); ++i) {
        const size_t bit = component.bits[i];
        if (bit / 8 < size && (memory[bit / 8] >> bit % 8 & 1) != 0)
            value |= uint64_t{1} << i;
    }
    return value;
}

} // namespace ZqTest
