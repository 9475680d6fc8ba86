#include "genapi/src/document/ElementName.h"

#include <array>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr std::string_view kNames[] = {
#define ZQ_TEXT(name) #name,
    ZQ_ELEMENT_NAMES(ZQ_TEXT)
#undef ZQ_TEXT
};
constexpr size_t kCount = sizeof kNames / sizeof *kNames;
constexpr size_t kPlaces = 512;
static_assert(kCount == static_cast<size_t>(ElementName::FirstUnknown) && kCount < kPlaces / 2);

/// No two of the names have length, first, middle and last character in common. The factors are chosen such
/// that two of them meet.
constexpr uint32_t Hash(std::string_view name) {
    const auto at = [name](size_t place) { return uint32_t{static_cast<unsigned char>(name[place])}; };
    const size_t size = name.size();
    return size == 0 ? 0 : 9 * static_cast<uint32_t>(size) + at(0) + 13 * at(size / 2) + 61 * at(size - 1);
}

/// Places hold one more than the number of a name; 0 is free.
constexpr std::array<uint16_t, kPlaces> MakePlaces() {
    std::array<uint16_t, kPlaces> places{};
    for (size_t i = 0; i < kCount; ++i) {
        size_t place = Hash(kNames[i]) % kPlaces;
        while (places[place] != 0)
            place = (place + 1) % kPlaces;
        places[place] = static_cast<uint16_t>(i + 1);
    }
    return places;
}

constexpr std::array<uint16_t, kPlaces> kPlacesByHash = MakePlaces();

} // namespace

ElementName FindElementName(std::string_view name) {
    for (size_t place = Hash(name) % kPlaces; kPlacesByHash[place] != 0; place = (place + 1) % kPlaces)
        if (kNames[kPlacesByHash[place] - 1] == name)
            return static_cast<ElementName>(kPlacesByHash[place] - 1);
    return ElementName::FirstUnknown;
}

std::string_view KnownElementName(ElementName name) {
    return kNames[static_cast<size_t>(name)];
}

} // namespace GENAPI_NAMESPACE::inside
