#include "producer/gentl/HandleRegistry.h"

#include "producer/sim/Failure.h"

namespace zqgentl {

namespace {

static_assert(sizeof(void*) == 8, "a handle is a key of 64 bits");

constexpr uint64_t mark = 0x5A1; // odd, so that no aligned address looks like a handle
constexpr unsigned markBits = 12;
constexpr unsigned indexBits = 20;
constexpr unsigned generationBits = 28;
constexpr uint64_t closedBit = uint64_t{1} << 31;
constexpr uint64_t pinMask = closedBit - 1;

struct Key {
    uint32_t index;
    uint32_t identity; // kind and generation
};

uint32_t Identity(Kind kind, uint32_t generation) {
    return static_cast<uint32_t>(kind) << generationBits | generation;
}

void* ToHandle(const Key& key) {
    const uint64_t bits =
        uint64_t{key.identity} << (markBits + indexBits) | uint64_t{key.index} << markBits | mark;
    return reinterpret_cast<void*>(bits);
}

Key FromHandle(void* handle) {
    const auto bits = reinterpret_cast<uint64_t>(handle);
    return {static_cast<uint32_t>(bits >> markBits) & ((1U << indexBits) - 1),
            static_cast<uint32_t>(bits >> (markBits + indexBits))};
}

bool HasMark(void* handle) {
    return (reinterpret_cast<uint64_t>(handle) & ((1U << markBits) - 1)) == mark;
}

} // namespace

HandleRegistry& HandleRegistry::Instance() {
    // Never destroyed: a process may end with handles open and threads in calls.
    static auto* registry = new HandleRegistry;
    return *registry;
}

void* HandleRegistry::Add(Kind kind, std::shared_ptr<Object> object) {
    std::lock_guard<std::mutex> guard(m_lock);
    const uint32_t index = TakeFreeSlot();
    Slot& slot = (*m_chunks[index / slotsPerChunk].load())[index % slotsPerChunk];
    slot.index = index;
    slot.generation = (slot.generation + 1) & ((1U << generationBits) - 1);
    slot.object = std::move(object);
    const uint32_t identity = Identity(kind, slot.generation);
    slot.state.store(uint64_t{identity} << 32 | 1, std::memory_order_release);
    return ToHandle({index, identity});
}

uint32_t HandleRegistry::TakeFreeSlot() {
    if (!m_free.empty()) {
        const uint32_t index = m_free.back();
        m_free.pop_back();
        return index;
    }
    if (m_used == slotsPerChunk * maxChunks)
        throw Failure(GenTL::GC_ERR_RESOURCE_EXHAUSTED, "too many handles are open");
    if (m_used % slotsPerChunk == 0) {
        m_free.reserve(m_used + slotsPerChunk); // Unpin must not allocate
        m_chunks[m_used / slotsPerChunk] = new Chunk;
    }
    return m_used++;
}

bool HandleRegistry::HasKind(void* handle, Kind kind) noexcept {
    return HasMark(handle) && FromHandle(handle).identity >> generationBits == static_cast<uint32_t>(kind);
}

HandleRegistry::Slot* HandleRegistry::Find(void* handle) noexcept {
    if (!HasMark(handle))
        return nullptr;
    const uint32_t index = FromHandle(handle).index;
    Chunk* chunk = m_chunks[index / slotsPerChunk].load(std::memory_order_acquire);
    return chunk == nullptr ? nullptr : &(*chunk)[index % slotsPerChunk];
}

HandleRegistry::Slot& HandleRegistry::PinSlot(Kind kind, void* handle) {
    Slot* slot = HasKind(handle, kind) ? Find(handle) : nullptr;
    if (slot != nullptr) {
        const uint64_t identity = FromHandle(handle).identity;
        uint64_t state = slot->state.load(std::memory_order_acquire);
        while (state >> 32 == identity && (state & closedBit) == 0 && (state & pinMask) != 0) {
            if (slot->state.compare_exchange_weak(state, state + 1, std::memory_order_acq_rel))
                return *slot;
        }
    }
    throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "the handle is not that of an open object of this kind");
}

bool HandleRegistry::Remove(Kind kind, void* handle) {
    Slot* slot = HasKind(handle, kind) ? Find(handle) : nullptr;
    if (slot == nullptr)
        return false;
    const uint64_t identity = FromHandle(handle).identity;
    uint64_t state = slot->state.load(std::memory_order_acquire);
    while (state >> 32 == identity && (state & closedBit) == 0 && (state & pinMask) != 0) {
        if (slot->state.compare_exchange_weak(state, state | closedBit, std::memory_order_acq_rel)) {
            Unpin(*slot);
            return true;
        }
    }
    return false;
}

void HandleRegistry::Unpin(Slot& slot) noexcept {
    const uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
    if ((before & pinMask) != 1)
        return;
    const std::shared_ptr<Object> last = std::move(slot.object);
    std::lock_guard<std::mutex> guard(m_lock);
    m_free.push_back(slot.index);
}

} // namespace zqgentl
