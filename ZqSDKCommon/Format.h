#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include <Base/GCString.h>

namespace ZqApi {

/// One argument of a format, with its kind and width, so that a conversion can't read it as something else.
class FormatArgument {
public:
    enum class Kind { Signed, Unsigned, Real, Text, Pointer };

    /// What a placeholder without an argument prints.
    FormatArgument() = default;

    template <class T, std::enable_if_t<std::is_integral<T>::value || std::is_enum<T>::value, int> = 0>
    FormatArgument(T value) : m_Bits(static_cast<uint64_t>(value)), m_Size(sizeof(T)) {
        using Number = typename std::conditional_t<std::is_enum<T>::value, std::underlying_type<T>,
                                                   std::common_type<T>>::type;
        m_Kind = std::is_signed<Number>::value ? Kind::Signed : Kind::Unsigned;
    }
    FormatArgument(double value) : m_Kind(Kind::Real), m_Real(value) {}
    FormatArgument(const char* value) : m_Kind(Kind::Text), m_Pointer(value) {}
    FormatArgument(const std::string& value) : FormatArgument(value.c_str()) {}
    FormatArgument(const GenICam::gcstring& value) : FormatArgument(value.c_str()) {}
    FormatArgument(std::nullptr_t) : m_Kind(Kind::Pointer) {}
    template <class T, std::enable_if_t<!std::is_same<std::remove_cv_t<T>, char>::value, int> = 0>
    FormatArgument(T* value) : m_Kind(Kind::Pointer), m_Pointer((const void*)value) {}

    Kind GetKind() const { return m_Kind; }
    /// The number widened to 64 bits by its own signedness; a pointer's address.
    uint64_t GetWide() const;
    /// The number's bits at its own width, upper ones zero.
    uint64_t GetBits() const;
    /// The same bits read as a signed number of that width.
    int64_t GetSigned() const;
    double GetReal() const;
    const char* GetText() const {
        return m_Kind == Kind::Text ? static_cast<const char*>(m_Pointer) : nullptr;
    }
    const void* GetPointer() const;

private:
    Kind m_Kind = Kind::Signed;
    uint64_t m_Bits = 0;
    size_t m_Size = sizeof(uint64_t);
    double m_Real = 0;
    const void* m_Pointer = nullptr;
};

std::string FormatArguments(const char* format, const FormatArgument* arguments, size_t count);

/// printf for the library's messages: additionally reads the length prefix "I64" as 64 bits and drops the
/// blank flag ("0x % p" keeps its one blank). "%p" prints what the C library prints, so "0x%p" reads
/// "0x0x7ffc..." and "0x(nil)".
///
/// Conversions without a length take the argument at its own width, whatever that is. Placeholders without an
/// argument print zero, surplus arguments are ignored, and "%n" prints nothing.
template <class... Arguments>
std::string Format(const char* format, const Arguments&... arguments) {
    const FormatArgument list[] = {FormatArgument(arguments)..., FormatArgument()};
    return FormatArguments(format, list, sizeof...(arguments));
}

} // namespace ZqApi
