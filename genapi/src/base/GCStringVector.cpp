#include <Base/GCStringVector.h>

#include <Base/GCException.h>

#include <algorithm>

namespace GENICAM_NAMESPACE {

namespace {

void CheckIndex(const char* what, size_t index, size_t limit) {
    if (index >= limit)
        throw OUT_OF_RANGE_EXCEPTION("%s: index %zu is not below %zu", what, index, limit);
}

} // namespace

gcstring_vector::gcstring_vector() = default;
gcstring_vector::gcstring_vector(const gcstring_vector& other) = default;
gcstring_vector::gcstring_vector(gcstring_vector&& other) noexcept = default;
gcstring_vector::gcstring_vector(size_t count) : m_items(count) {}
gcstring_vector::gcstring_vector(size_t count, const gcstring& text) : m_items(count, text) {}
gcstring_vector::~gcstring_vector() = default;
gcstring_vector& gcstring_vector::operator=(const gcstring_vector& other) = default;
gcstring_vector& gcstring_vector::operator=(gcstring_vector&& other) noexcept = default;

void gcstring_vector::assign(size_t count, const gcstring& text) {
    m_items.assign(count, text);
}
gcstring& gcstring_vector::at(size_t index) {
    CheckIndex("at", index, m_items.size());
    return m_items[index];
}
const gcstring& gcstring_vector::at(size_t index) const {
    CheckIndex("at", index, m_items.size());
    return m_items[index];
}
gcstring& gcstring_vector::back() {
    return m_items.back();
}
const gcstring& gcstring_vector::back() const {
    return m_items.back();
}
gcstring& gcstring_vector::front() {
    return m_items.front();
}
const gcstring& gcstring_vector::front() const {
    return m_items.front();
}
gcstring_vector::iterator gcstring_vector::begin() {
    return m_items.begin();
}
gcstring_vector::const_iterator gcstring_vector::begin() const {
    return m_items.begin();
}
gcstring_vector::iterator gcstring_vector::end() {
    return m_items.end();
}
gcstring_vector::const_iterator gcstring_vector::end() const {
    return m_items.end();
}
size_t gcstring_vector::capacity() const {
    return m_items.capacity();
}
void gcstring_vector::clear() {
    m_items.clear();
}
bool gcstring_vector::contains(const gcstring& text) const {
    return std::find(m_items.begin(), m_items.end(), text) != m_items.end();
}
bool gcstring_vector::empty() const {
    return m_items.empty();
}
gcstring_vector::iterator gcstring_vector::erase(iterator position) {
    return m_items.erase(position);
}
void gcstring_vector::erase(size_t index) {
    CheckIndex("erase", index, m_items.size());
    m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index));
}
gcstring_vector::iterator gcstring_vector::insert(iterator position, const gcstring& text) {
    return m_items.insert(position, text);
}
void gcstring_vector::insert(size_t index, const gcstring& text) {
    CheckIndex("insert", index, m_items.size() + 1);
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(index), text);
}
size_t gcstring_vector::max_size() const {
    return m_items.max_size();
}
void gcstring_vector::pop_back() {
    m_items.pop_back();
}
void gcstring_vector::push_back(const gcstring& text) {
    m_items.push_back(text);
}
void gcstring_vector::reserve(size_t count) {
    m_items.reserve(count);
}
void gcstring_vector::resize(size_t count, const gcstring& fill) {
    m_items.resize(count, fill);
}
size_t gcstring_vector::size() const {
    return m_items.size();
}
gcstring& gcstring_vector::operator[](size_t index) {
    return m_items[index];
}
const gcstring& gcstring_vector::operator[](size_t index) const {
    return m_items[index];
}

} // namespace GENICAM_NAMESPACE
