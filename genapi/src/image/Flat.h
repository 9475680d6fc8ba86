#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::inside {

/// The building blocks of an image: one block of memory whose parts point to each other by distance, so that
/// it can be copied, written to a file and read back as it is. They can't be copied one by one: only the
/// whole block moves. An image is at most kMaxImageSize long.
constexpr size_t kMaxImageSize = size_t{1} << 30;

/// How far it is from a part to what it points to.
class Distance {
public:
    Distance() = default;
    Distance(const Distance&) = delete;
    Distance& operator=(const Distance&) = delete;

protected:
    ~Distance() = default;
    // In numbers: as pointers, they would have to stay inside this object.
    void Set(const void* target) {
        m_bytes = static_cast<int32_t>(reinterpret_cast<intptr_t>(target) - Here());
    }
    const void* Get() const { return reinterpret_cast<const void*>(Here() + m_bytes); }
    bool IsSet() const { return m_bytes != 0; }

private:
    intptr_t Here() const { return reinterpret_cast<intptr_t>(this); }

    int32_t m_bytes = 0;
};

/// One part elsewhere in the image, or none.
template <class T>
class Ref : private Distance {
public:
    void Point(T* target) { Set(target); }
    explicit operator bool() const { return IsSet(); }
    const T* Find() const { return IsSet() ? static_cast<const T*>(Get()) : nullptr; }
    const T& operator*() const { return *static_cast<const T*>(Get()); }
    const T* operator->() const { return static_cast<const T*>(Get()); }
    T& operator*() { return *const_cast<T*>(static_cast<const T*>(Get())); }
    T* operator->() { return &**this; }
};

/// Several parts in a row.
template <class T>
class List : private Distance {
public:
    void Point(T* first, size_t count) {
        m_count = static_cast<uint32_t>(count);
        Set(count == 0 ? static_cast<const void*>(this) : first);
    }
    size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    const T* begin() const { return static_cast<const T*>(Get()); }
    const T* end() const { return begin() + m_count; }
    T* begin() { return const_cast<T*>(static_cast<const T*>(Get())); }
    T* end() { return begin() + m_count; }
    const T& operator[](size_t index) const { return begin()[index]; }
    T& operator[](size_t index) { return begin()[index]; }
    /// Keeps the first `count`.
    void Shorten(size_t count) { m_count = static_cast<uint32_t>(count); }

private:
    uint32_t m_count = 0;
};

/// Characters elsewhere in the image.
class Text : private Distance {
public:
    /// `text` lies in the same image.
    void Point(std::string_view text) {
        m_length = static_cast<uint32_t>(text.size());
        Set(text.empty() ? static_cast<const void*>(this) : text.data());
    }
    std::string_view View() const { return {static_cast<const char*>(Get()), m_length}; }
    operator std::string_view() const { return View(); } // NOLINT(google-explicit-constructor): it is one
    std::string Copy() const { return std::string(View()); }
    bool empty() const { return m_length == 0; }
    size_t size() const { return m_length; }

private:
    uint32_t m_length = 0;
};

inline bool operator==(const Text& left, std::string_view right) {
    return left.View() == right;
}
inline bool operator!=(const Text& left, std::string_view right) {
    return left.View() != right;
}

} // namespace GENAPI_NAMESPACE::inside
