#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace zqgentl {

/// Whatever a handle can stand for.
enum class Kind : uint8_t { System = 1, Interface, Device, RemotePort, Stream, Buffer, Event };

/// Base of everything that has a handle.
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;
};

/// Gives out handles and finds the objects behind them. A handle is a key made of a slot number, the slot's
/// generation and the kind of object; it is never taken for an address, so any value whatever may be looked
/// up. Looking up takes no lock: it pins the slot, and an object closed meanwhile lives until the last pin is
/// gone.
class HandleRegistry {
    struct Slot;

public:
    /// Keeps an object alive while an entry point works on it.
    template <class T>
    class Pin {
    public:
        Pin(Pin&& other) noexcept
            : m_registry(other.m_registry), m_slot(other.m_slot), m_object(other.m_object) {
            other.m_slot = nullptr;
        }
        Pin& operator=(Pin&&) = delete;
        ~Pin() {
            if (m_slot != nullptr)
                m_registry.Unpin(*m_slot);
        }
        T* operator->() const noexcept { return m_object; }
        T& operator*() const noexcept { return *m_object; }

    private:
        friend class HandleRegistry;
        Pin(HandleRegistry& registry, Slot& slot, T* object)
            : m_registry(registry), m_slot(&slot), m_object(object) {}

        HandleRegistry& m_registry;
        Slot* m_slot;
        T* m_object;
    };

    /// The one registry of the process. Handles of an earlier GCInitLib stay stale for good.
    static HandleRegistry& Instance();

    [[nodiscard]] void* Add(Kind kind, std::shared_ptr<Object> object);
    /// Ends a handle; false when it wasn't one of this kind any more, so that of two closing threads one
    /// wins.
    bool Remove(Kind kind, void* handle);
    [[nodiscard]] static bool HasKind(void* handle, Kind kind) noexcept;

    /// The object behind a handle of T's kind; any other handle throws GC_ERR_INVALID_HANDLE.
    template <class T>
    [[nodiscard]] Pin<T> Get(void* handle) {
        Slot& slot = PinSlot(T::kind, handle);
        return Pin<T>(*this, slot, static_cast<T*>(slot.object.get()));
    }

private:
    struct Slot {
        // Upper half: key (kind and generation). Bit 31: closed. Lower bits: pins, the open handle's own
        // included.
        std::atomic<uint64_t> state{0};
        std::shared_ptr<Object> object;
        uint32_t generation = 0;
        uint32_t index = 0;
    };
    static constexpr size_t slotsPerChunk = 1024;
    static constexpr size_t maxChunks = 1024;
    using Chunk = std::array<Slot, slotsPerChunk>;

    HandleRegistry() = default;
    [[nodiscard]] Slot* Find(void* handle) noexcept;
    [[nodiscard]] Slot& PinSlot(Kind kind, void* handle);
    void Unpin(Slot& slot) noexcept;
    [[nodiscard]] uint32_t TakeFreeSlot();

    std::array<std::atomic<Chunk*>, maxChunks> m_chunks{};
    std::mutex m_lock;
    std::vector<uint32_t> m_free;
    uint32_t m_used = 0;
};

} // namespace zqgentl
