#include "genapi/src/image/DescriptionImage.h"

#include <Base/GCException.h>

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

// Measured: real descriptions need 2 to 5 times their text. Memory that is not used costs nothing.
constexpr size_t kUsualGrowth = 8;
constexpr size_t kLeastCapacity = 64 * 1024;

DescriptionImage BuildWithin(size_t capacity, const std::function<void(DocumentWriter&)>& write) {
    Arena arena(capacity);
    auto* const description = arena.New<Description>();
    DocumentWriter writer(arena, description->document);
    write(writer);
    LinkDescription(arena, *description);
    const size_t size = arena.Used();
    return {DescriptionIn(arena.Take()), size};
}

} // namespace

DescriptionImage BuildImage(size_t textSize, const std::function<void(DocumentWriter&)>& write) {
    for (size_t capacity = std::max(kLeastCapacity, kUsualGrowth * textSize);; capacity *= 4)
        try {
            return BuildWithin(std::min(capacity, kMaxImageSize), write);
        } catch (const ArenaFull&) {
            if (capacity >= kMaxImageSize)
                throw RUNTIME_EXCEPTION("The description needs more than %zu bytes of memory.",
                                        kMaxImageSize);
        }
}

std::shared_ptr<const Description> DescriptionIn(Memory image) {
    const std::shared_ptr<char> memory(std::move(image));
    return {memory, reinterpret_cast<const Description*>(memory.get())};
}

} // namespace GENAPI_NAMESPACE::inside
