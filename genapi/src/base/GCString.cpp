#include <Base/GCString.h>

#include <Base/GCException.h>

#include <utility>

namespace GENICAM_NAMESPACE {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t point) {
    if (point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        point = kReplacement;
    if (point < 0x80) {
        out += static_cast<char>(point);
        return;
    }
    const int tail = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLead[tail] | (point >> (6 * tail)));
    for (int shift = 6 * (tail - 1); shift >= 0; shift -= 6)
        out += static_cast<char>(0x80 | ((point >> shift) & 0x3F));
}

/// Takes one code point from `text` at `offset`; a bad sequence is one replacement character for its first
/// byte.
char32_t TakeUtf8(const std::string& text, size_t& offset) {
    const auto first = static_cast<unsigned char>(text[offset++]);
    if (first < 0x80)
        return first;
    const int tail = first >= 0xF0 && first < 0xF8   ? 3
                     : first >= 0xE0 && first < 0xF0 ? 2
                     : first >= 0xC2 && first < 0xE0 ? 1
                                                     : 0;
    if (tail == 0 || text.size() - offset < static_cast<size_t>(tail))
        return kReplacement;
    char32_t point = first & (0x3F >> tail);
    for (int i = 0; i < tail; ++i) {
        const auto next = static_cast<unsigned char>(text[offset + static_cast<size_t>(i)]);
        if ((next & 0xC0) != 0x80)
            return kReplacement;
        point = (point << 6) | (next & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (point < kSmallest[tail] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return kReplacement;
    offset += static_cast<size_t>(tail);
    return point;
}

std::string ToUtf8(const wchar_t* text) {
    std::string out;
    for (; text && *text; ++text)
        AppendUtf8(out, static_cast<char32_t>(*text));
    return out;
}

} // namespace

const size_t gcstring::npos;

gcstring::gcstring() = default;
gcstring::gcstring(const char* text) : m_text(text ? text : "") {}
gcstring::gcstring(const char* text, size_t length)
    : m_text(text ? std::string(text, length) : std::string()) {}
gcstring::gcstring(size_t count, char character) : m_text(count, character) {}
gcstring::gcstring(const gcstring& other) = default;
gcstring::gcstring(gcstring&& other) noexcept = default;
gcstring::gcstring(const wchar_t* text) : m_text(ToUtf8(text)) {}
gcstring::~gcstring() = default;

gcstring& gcstring::operator=(const gcstring& other) = default;
gcstring& gcstring::operator=(gcstring&& other) noexcept = default;
gcstring& gcstring::operator=(const char* text) {
    m_text = std::string(text ? text : "");
    return *this;
}
gcstring& gcstring::operator=(const wchar_t* text) {
    m_text = ToUtf8(text);
    return *this;
}

gcstring& gcstring::append(const gcstring& text) {
    m_text += text.m_text;
    return *this;
}
gcstring& gcstring::append(size_t count, char character) {
    m_text.append(count, character);
    return *this;
}
gcstring& gcstring::assign(const gcstring& text) {
    m_text = text.m_text;
    return *this;
}
gcstring& gcstring::assign(size_t count, char character) {
    m_text.assign(count, character);
    return *this;
}
int gcstring::compare(const gcstring& other) const {
    return m_text.compare(other.m_text);
}
const char* gcstring::c_str() const {
    return m_text.c_str();
}
std::wstring gcstring::w_str() const {
    std::wstring out;
    for (size_t offset = 0; offset < m_text.size();)
        out += static_cast<wchar_t>(TakeUtf8(m_text, offset));
    return out;
}
bool gcstring::empty() const {
    return m_text.empty();
}

size_t gcstring::find(char character, size_t offset) const {
    return m_text.find(character, offset);
}
size_t gcstring::find(const gcstring& text, size_t offset) const {
    return m_text.find(text.m_text, offset);
}
size_t gcstring::find(const gcstring& text, size_t offset, size_t count) const {
    return m_text.find(text.m_text.substr(0, count), offset);
}
size_t gcstring::find(const char* text, size_t offset) const {
    return m_text.find(text ? text : "", offset);
}
size_t gcstring::find(const char* text, size_t offset, size_t count) const {
    return find(gcstring(text), offset, count);
}
size_t gcstring::find_first_of(const gcstring& characters, size_t offset) const {
    return m_text.find_first_of(characters.m_text, offset);
}
size_t gcstring::find_first_of(const gcstring& characters, size_t offset, size_t count) const {
    return m_text.find_first_of(characters.m_text.substr(0, count), offset);
}
size_t gcstring::find_first_not_of(const gcstring& characters, size_t offset) const {
    return m_text.find_first_not_of(characters.m_text, offset);
}
size_t gcstring::find_first_not_of(const gcstring& characters, size_t offset, size_t count) const {
    return m_text.find_first_not_of(characters.m_text.substr(0, count), offset);
}
size_t gcstring::find_last_of(const gcstring& characters, size_t offset) const {
    return m_text.find_last_of(characters.m_text, offset);
}
size_t gcstring::find_last_not_of(const gcstring& characters, size_t offset) const {
    return m_text.find_last_not_of(characters.m_text, offset);
}

size_t gcstring::length() const {
    return m_text.size();
}
size_t gcstring::size() const {
    return m_text.size();
}
void gcstring::resize(size_t length) {
    m_text.resize(length);
}
void gcstring::resize(size_t length, char fill) {
    m_text.resize(length, fill);
}
void gcstring::reserve(size_t capacity) {
    m_text.reserve(capacity);
}
void gcstring::erase(size_t offset, size_t count) {
    if (offset > m_text.size())
        throw OUT_OF_RANGE_EXCEPTION("erase: position %zu is behind the end of a text of %zu", offset,
                                     m_text.size());
    m_text.erase(offset, count);
}
size_t gcstring::max_size() const {
    return m_text.max_size();
}
gcstring gcstring::substr(size_t offset, size_t count) const {
    if (offset > m_text.size())
        throw OUT_OF_RANGE_EXCEPTION("substr: position %zu is behind the end of a text of %zu", offset,
                                     m_text.size());
    gcstring part;
    part.m_text = m_text.substr(offset, count);
    return part;
}
void gcstring::swap(gcstring& other) {
    m_text.swap(other.m_text);
}

gcstring& gcstring::operator+=(const gcstring& text) {
    return append(text);
}
gcstring& gcstring::operator+=(const char* text) {
    return append(gcstring(text));
}
gcstring& gcstring::operator+=(char character) {
    return append(1, character);
}
bool gcstring::operator==(const gcstring& other) const {
    return m_text == other.m_text;
}
bool gcstring::operator==(const char* other) const {
    return m_text == (other ? other : "");
}
bool gcstring::operator!=(const gcstring& other) const {
    return m_text != other.m_text;
}
bool gcstring::operator!=(const char* other) const {
    return !(*this == other);
}
bool gcstring::operator<(const gcstring& other) const {
    return m_text < other.m_text;
}
bool gcstring::operator>(const gcstring& other) const {
    return m_text > other.m_text;
}
gcstring::operator const char*() const {
    return m_text.c_str();
}

size_t gcstring::_npos() {
    return npos;
}

gcstring operator+(const gcstring& left, const gcstring& right) {
    return gcstring(left).append(right);
}
gcstring operator+(const gcstring& left, const char* right) {
    return gcstring(left) += right;
}
gcstring operator+(const char* left, const gcstring& right) {
    return gcstring(left).append(right);
}
gcstring operator+(const gcstring& left, char right) {
    return gcstring(left) += right;
}
gcstring operator+(char left, const gcstring& right) {
    return gcstring(1, left).append(right);
}
bool operator==(const char* left, const gcstring& right) {
    return right == left;
}
bool operator!=(const char* left, const gcstring& right) {
    return right != left;
}

std::istream& getline(std::istream& stream, gcstring& text, char delimiter) {
    std::string line;
    std::getline(stream, line, delimiter);
    text = gcstring(line.data(), line.size());
    return stream;
}
std::istream& getline(std::istream& stream, gcstring& text) {
    return getline(stream, text, '\n');
}

} // namespace GENICAM_NAMESPACE

std::ostream& operator<<(std::ostream& stream, const GENICAM_NAMESPACE::gcstring& text) {
    return std::operator<<(stream, std::string(text.c_str(), text.size()));
}

std::istream& operator>>(std::istream& stream, GENICAM_NAMESPACE::gcstring& text) {
    std::string word;
    std::operator>>(stream, word);
    text = GENICAM_NAMESPACE::gcstring(word.data(), word.size());
    return stream;
}
