#include "ZqSDKCommon/Format.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace ZqApi {
namespace {

/// A conversion without its length, which the typed argument makes superfluous.
struct Placeholder {
    std::string flagsAndWidth;
    bool wide = false;
    char conversion = '\0';
};

/// Hands out the arguments in order and zeros behind the last one.
class ArgumentReader {
public:
    ArgumentReader(const FormatArgument* arguments, size_t count) : m_Next(arguments), m_Left(count) {}

    FormatArgument Take() {
        if (m_Left == 0)
            return FormatArgument();
        --m_Left;
        return *m_Next++;
    }

private:
    const FormatArgument* m_Next;
    size_t m_Left;
};

template <class T>
void AppendPrinted(std::string& text, const std::string& pattern, T value) {
    const int length = std::snprintf(nullptr, 0, pattern.c_str(), value);
    if (length <= 0)
        return;
    std::vector<char> buffer(static_cast<size_t>(length) + 1);
    std::snprintf(buffer.data(), buffer.size(), pattern.c_str(), value);
    text.append(buffer.data(), static_cast<size_t>(length));
}

/// Reads what stands between "%" and the conversion letter, inclusive, and moves `at` behind it.
Placeholder ReadPlaceholder(const char*& at, ArgumentReader& arguments) {
    Placeholder result;
    for (; *at != '\0' && std::strchr("-+#0 123456789.*", *at) != nullptr; ++at) {
        if (*at == '*')
            result.flagsAndWidth += std::to_string(arguments.Take().GetSigned());
        else if (*at != ' ')
            result.flagsAndWidth += *at;
    }
    if (std::strncmp(at, "I64", 3) == 0) {
        result.wide = true;
        at += 3;
    }
    for (; *at != '\0' && std::strchr("lhjzt", *at) != nullptr; ++at)
        result.wide |= *at != 'h';
    if (*at != '\0')
        result.conversion = *at++;
    return result;
}

void AppendText(std::string& text, const Placeholder& placeholder, const FormatArgument& argument) {
    const bool isNumber = argument.GetText() == nullptr && argument.GetWide() != 0;
    if (isNumber)
        text += std::to_string(argument.GetSigned());
    else
        AppendPrinted(text, placeholder.flagsAndWidth + "s",
                      argument.GetText() != nullptr ? argument.GetText() : "(null)");
}

void AppendConverted(std::string& text, Placeholder placeholder, const FormatArgument& argument) {
    placeholder.flagsAndWidth.insert(0, 1, '%');
    const std::string& pattern = placeholder.flagsAndWidth;
    const char conversion = placeholder.conversion;
    switch (conversion) {
    case 'd':
    case 'i':
        return AppendPrinted(
            text, pattern + "lld",
            static_cast<long long>(placeholder.wide ? argument.GetWide() : argument.GetSigned()));
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        return AppendPrinted(
            text, pattern + "ll" + conversion,
            static_cast<unsigned long long>(placeholder.wide ? argument.GetWide() : argument.GetBits()));
    case 'c':
        return AppendPrinted(text, pattern + conversion, static_cast<int>(argument.GetSigned()));
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
        return AppendPrinted(text, pattern + conversion, argument.GetReal());
    case 'p':
        return AppendPrinted(text, pattern + conversion, argument.GetPointer());
    case 's':
        return AppendText(text, placeholder, argument);
    default:
        return;
    }
}

} // namespace

uint64_t FormatArgument::GetWide() const {
    if (m_Kind == Kind::Text || m_Kind == Kind::Pointer)
        return reinterpret_cast<uintptr_t>(m_Pointer);
    return m_Kind == Kind::Real ? static_cast<uint64_t>(std::llround(m_Real)) : m_Bits;
}

uint64_t FormatArgument::GetBits() const {
    const uint64_t wide = GetWide();
    return m_Size >= sizeof(uint64_t) ? wide : wide & ((uint64_t{1} << (8 * m_Size)) - 1);
}

int64_t FormatArgument::GetSigned() const {
    const size_t unused = 64 - 8 * m_Size;
    return static_cast<int64_t>(GetBits() << unused) >> unused;
}

double FormatArgument::GetReal() const {
    if (m_Kind == Kind::Real)
        return m_Real;
    return m_Kind == Kind::Unsigned ? static_cast<double>(GetBits()) : static_cast<double>(GetSigned());
}

const void* FormatArgument::GetPointer() const {
    if (m_Kind == Kind::Text || m_Kind == Kind::Pointer)
        return m_Pointer;
    return reinterpret_cast<const void*>(
        static_cast<uintptr_t>(GetBits())); // NOLINT(performance-no-int-to-ptr)
}

std::string FormatArguments(const char* format, const FormatArgument* arguments, size_t count) {
    std::string text;
    ArgumentReader reader(arguments, count);
    const char* at = format;
    while (*at != '\0') {
        const size_t plain = std::strcspn(at, "%");
        text.append(at, plain);
        at += plain;
        if (*at == '\0')
            break;
        if (*++at == '%') {
            text += *at++;
            continue;
        }
        const Placeholder placeholder = ReadPlaceholder(at, reader);
        AppendConverted(text, placeholder, reader.Take());
    }
    return text;
}

} // namespace ZqApi
