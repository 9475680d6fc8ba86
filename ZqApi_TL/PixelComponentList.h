#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <ZqApi/PixelComponent.h>

namespace ZqApi {

/// What one value of a pixel is, and the raw sample.
struct SPIXE_COMPONENT_INFO {
    EZqPixelComponent_t component;
    uint64_t value;
};

/// No format has a pixel of more values.
constexpr size_t MaximalComponentCount = 3;

/// The values of one pixel, in the order in which they are reported.
struct PixelComponents {
    size_t count = 0;
    SPIXE_COMPONENT_INFO entries[MaximalComponentCount];

    void Append(EZqPixelComponent_t component, uint64_t value) { entries[count++] = {component, value}; }
};

/// The values of the pixel read last, replaced as a whole; any thread.
///
/// A program that walks an image asks several times per pixel, so asking takes loads only: an odd sequence
/// number, or one that has changed, says that what was read is not of one piece and must be read again.
class PixelComponentList {
public:
    void Replace(const PixelComponents& pixel);

    size_t GetCount() const {
        SPIXE_COMPONENT_INFO first;
        return GetEntry(0, first);
    }

    /// Returns the count; stores the entry where `index` is below it.
    size_t GetEntry(size_t index, SPIXE_COMPONENT_INFO& info) const {
        for (Patience patience;; patience.Wait()) {
            const uint64_t before = m_Sequence.load(std::memory_order_acquire);
            const size_t count = m_Count.load(std::memory_order_acquire);
            const Entry& entry = m_Entries[index < count ? index : 0];
            const EZqPixelComponent_t component = entry.component.load(std::memory_order_acquire);
            const uint64_t value = entry.value.load(std::memory_order_acquire);
            if (before % 2 != 0 || m_Sequence.load(std::memory_order_acquire) != before)
                continue;
            info = {component, value};
            return count;
        }
    }

private:
    struct Entry {
        std::atomic<EZqPixelComponent_t> component{ZqPixelComponent_Unknown};
        std::atomic<uint64_t> value{0};
    };

    /// Sleeps when trying again has not helped: a thread of real-time priority might otherwise keep the
    /// replacing one from its end for ever.
    class Patience {
    public:
        void Wait() {
            if (++m_Tries > 100)
                Sleep();
        }

    private:
        static void Sleep();

        int m_Tries = 0;
    };

    uint64_t BeginReplacing();

    std::atomic<uint64_t> m_Sequence{0};
    std::atomic<size_t> m_Count{0};
    Entry m_Entries[MaximalComponentCount];
};

} // namespace ZqApi
