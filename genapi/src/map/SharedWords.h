#pragma once

#include "genapi/src/map/NodeState.h"

#include <map>
#include <tuple>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

/// What numbers at the same place have in common: the bytes there, as one of them has read them. Files have
/// many nodes for the bits of one register, and many ways to say where it lies. Registers are known by their
/// slot.
class SharedWords {
public:
    static constexpr int64_t kMaxLength = 8;

    explicit SharedWords(size_t registers) : m_users(registers) {}

    /// The bytes at that place, or null when they have to be read for this register.
    const uint8_t* Find(uint32_t slot, NodeIndex port, Place place);
    /// They have been read.
    void Keep(uint32_t slot, NodeIndex port, Place place, const uint8_t* bytes);
    /// What the register was last seen to hold is out of date, for all.
    void Drop(uint32_t slot);
    /// The same for all words that a place touches.
    void DropAt(NodeIndex port, Place place);

private:
    static constexpr uint32_t kNone = 0xFFFFFFFF;
    struct Word {
        NodeIndex port = kNoNode;
        Place place;
        uint8_t bytes[kMaxLength] = {};
        uint32_t readAt = 0; ///< 0: not kept
    };
    struct User {
        uint32_t word = kNone;
        uint32_t droppedAt = 0; ///< what was read before is not good for it
    };

    uint32_t WordAt(NodeIndex port, Place place);
    void Tick();

    std::vector<Word> m_words;
    std::map<std::tuple<NodeIndex, int64_t, int64_t>, uint32_t> m_places;
    std::vector<User> m_users;
    uint32_t m_clock = 1;
};

/// True when two places have bytes in common.
bool Overlap(Place left, Place right);

} // namespace GENAPI_NAMESPACE::inside
