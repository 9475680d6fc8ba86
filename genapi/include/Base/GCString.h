#pragma once

#include <Base/GCTypes.h>

#include <istream>
#include <ostream>
#include <string>

namespace GENICAM_NAMESPACE {

/// Narrow text (UTF-8 by convention) with a kept length: it may hold NUL bytes. A value type, one thread at a
/// time. Positions behind the end throw OutOfRangeException; lengths above max_size throw std::length_error.
class GCBASE_API gcstring {
public:
    gcstring();
    /// A null pointer gives an empty text.
    gcstring(const char* text); // NOLINT(google-explicit-constructor): part of the interface
    gcstring(const char* text, size_t length);
    gcstring(size_t count, char character);
    gcstring(const gcstring& other);
    gcstring(gcstring&& other) noexcept;
    /// Wide text (UTF-32 on Linux) becomes UTF-8; what is no code point becomes U+FFFD.
    explicit gcstring(const wchar_t* text);
    virtual ~gcstring();

    gcstring& operator=(const gcstring& other);
    gcstring& operator=(gcstring&& other) noexcept;
    gcstring& operator=(const char* text);
    gcstring& operator=(const wchar_t* text);

    gcstring& append(const gcstring& text);
    gcstring& append(size_t count, char character);
    gcstring& assign(const gcstring& text);
    gcstring& assign(size_t count, char character);
    /// Below, equal to or above zero, comparing bytes.
    int compare(const gcstring& other) const;
    const char* c_str() const;
    /// The text decoded from UTF-8; bytes that are not UTF-8 become U+FFFD.
    std::wstring w_str() const;
    bool empty() const;
    size_t find(char character, size_t offset = 0) const;
    size_t find(const gcstring& text, size_t offset = 0) const;
    size_t find(const gcstring& text, size_t offset, size_t count) const;
    size_t find(const char* text, size_t offset = 0) const;
    size_t find(const char* text, size_t offset, size_t count) const;
    size_t find_first_of(const gcstring& characters, size_t offset = 0) const;
    size_t find_first_of(const gcstring& characters, size_t offset, size_t count) const;
    size_t find_first_not_of(const gcstring& characters, size_t offset = 0) const;
    size_t find_first_not_of(const gcstring& characters, size_t offset, size_t count) const;
    size_t find_last_of(const gcstring& characters, size_t offset = static_cast<size_t>(-1)) const;
    size_t find_last_not_of(const gcstring& characters, size_t offset = static_cast<size_t>(-1)) const;
    size_t length() const;
    size_t size() const;
    void resize(size_t length);
    void resize(size_t length, char fill);
    void reserve(size_t capacity = 0);
    void erase(size_t offset = 0, size_t count = static_cast<size_t>(-1));
    size_t max_size() const;
    gcstring substr(size_t offset = 0, size_t count = static_cast<size_t>(-1)) const;
    void swap(gcstring& other);

    gcstring& operator+=(const gcstring& text);
    gcstring& operator+=(const char* text);
    gcstring& operator+=(char character);
    bool operator==(const gcstring& other) const;
    bool operator==(const char* other) const;
    bool operator!=(const gcstring& other) const;
    bool operator!=(const char* other) const;
    bool operator<(const gcstring& other) const;
    bool operator>(const gcstring& other) const;
    operator const char*() const; // NOLINT(google-explicit-constructor): part of the interface

    static size_t _npos();
    static const size_t npos = static_cast<size_t>(-1);

private:
    std::string m_text;
};

GCBASE_API gcstring operator+(const gcstring& left, const gcstring& right);
GCBASE_API gcstring operator+(const gcstring& left, const char* right);
GCBASE_API gcstring operator+(const char* left, const gcstring& right);
GCBASE_API gcstring operator+(const gcstring& left, char right);
GCBASE_API gcstring operator+(char left, const gcstring& right);
GCBASE_API bool operator==(const char* left, const gcstring& right);
GCBASE_API bool operator!=(const char* left, const gcstring& right);

/// Reads up to `delimiter`, which is taken from the stream and dropped.
GCBASE_API std::istream& getline(std::istream& stream, gcstring& text, char delimiter);
GCBASE_API std::istream& getline(std::istream& stream, gcstring& text);

} // namespace GENICAM_NAMESPACE

GCBASE_API std::ostream& operator<<(std::ostream& stream, const GENICAM_NAMESPACE::gcstring& text);
GCBASE_API std::istream& operator>>(std::istream& stream, GENICAM_NAMESPACE::gcstring& text);

// Argument-dependent look-up does not reach the global scope from inside other namespaces that have operators
// of their own.
namespace GENICAM_NAMESPACE {
using ::operator<<;
using ::operator>>;
} // namespace GENICAM_NAMESPACE
