#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zqgentl {

/// What a camera can send of one scene, numbered as the enumeration ComponentSelector numbers them. More than
/// one switched on makes a frame of several parts, in this order.
enum class Component : uint32_t { Intensity, Confidence };
constexpr size_t componentCount = 2;

/// A set of components, one bit each.
using ComponentMask = uint32_t;
constexpr ComponentMask MaskOf(Component component) {
    return ComponentMask{1} << static_cast<uint32_t>(component);
}

/// One part of a frame.
struct Part {
    Component component = Component::Intensity;
    size_t offset = 0;
    size_t size = 0;
    uint64_t format = 0;
};

/// The parts of a frame; a frame with one part only is no multi-part frame and has none.
struct PartList {
    size_t count = 0;
    std::array<Part, componentCount> parts{};
};

/// One byte a pixel, as the naming convention has it.
constexpr uint64_t confidence8 = 0x010800C6;

} // namespace zqgentl
