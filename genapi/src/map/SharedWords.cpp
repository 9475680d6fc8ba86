#include "genapi/src/map/SharedWords.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

bool Overlap(Place left, Place right) {
    const uint64_t distance = static_cast<uint64_t>(right.address) - static_cast<uint64_t>(left.address);
    const uint64_t back = static_cast<uint64_t>(left.address) - static_cast<uint64_t>(right.address);
    return distance < static_cast<uint64_t>(left.length) || back < static_cast<uint64_t>(right.length);
}

uint32_t SharedWords::WordAt(NodeIndex port, Place place) {
    // An address may come from a device, which can make it another one every time.
    constexpr size_t kMaxWords = 65536;
    if (m_words.size() >= kMaxWords) {
        m_words.clear();
        m_places.clear();
        for (User& user : m_users)
            user.word = kNone;
    }
    const auto next = static_cast<uint32_t>(m_words.size());
    const auto [found, isNew] = m_places.try_emplace({port, place.address, place.length}, next);
    if (isNew) {
        m_words.emplace_back();
        m_words.back().port = port;
        m_words.back().place = place;
    }
    return found->second;
}

const uint8_t* SharedWords::Find(uint32_t slot, NodeIndex port, Place place) {
    if (place.length > kMaxLength)
        return nullptr;
    const uint32_t index = WordAt(port, place);
    User& user = m_users[slot];
    user.word = index;
    const Word& word = m_words[index];
    return word.readAt > user.droppedAt ? word.bytes : nullptr;
}

void SharedWords::Keep(uint32_t slot, NodeIndex port, Place place, const uint8_t* bytes) {
    if (place.length > kMaxLength)
        return;
    Tick();
    const uint32_t index = WordAt(port, place);
    m_users[slot].word = index;
    std::copy(bytes, bytes + place.length, m_words[index].bytes);
    m_words[index].readAt = m_clock;
}

void SharedWords::Drop(uint32_t slot) {
    User& user = m_users[slot];
    user.droppedAt = m_clock;
    if (user.word != kNone)
        m_words[user.word].readAt = 0;
}

void SharedWords::DropAt(NodeIndex port, Place place) {
    for (Word& word : m_words)
        if (word.port == port && Overlap(word.place, place))
            word.readAt = 0;
}

void SharedWords::Tick() {
    if (++m_clock != 0)
        return;
    m_clock = 1;
    for (Word& word : m_words)
        word.readAt = 0;
    for (User& user : m_users)
        user.droppedAt = 0;
}

} // namespace GENAPI_NAMESPACE::inside
