#pragma once

#include <Base/GCString.h>

#include <vector>

namespace GENICAM_NAMESPACE {

/// A vector of texts. A value type, one thread at a time; `at` throws OutOfRangeException, `[]` checks
/// nothing.
class GCBASE_API gcstring_vector {
public:
    using iterator = std::vector<gcstring>::iterator;
    using const_iterator = std::vector<gcstring>::const_iterator;

    gcstring_vector();
    gcstring_vector(const gcstring_vector& other);
    gcstring_vector(gcstring_vector&& other) noexcept;
    explicit gcstring_vector(size_t count);
    gcstring_vector(size_t count, const gcstring& text);
    virtual ~gcstring_vector();
    gcstring_vector& operator=(const gcstring_vector& other);
    gcstring_vector& operator=(gcstring_vector&& other) noexcept;

    void assign(size_t count, const gcstring& text);
    gcstring& at(size_t index);
    const gcstring& at(size_t index) const;
    gcstring& back();
    const gcstring& back() const;
    gcstring& front();
    const gcstring& front() const;
    iterator begin();
    const_iterator begin() const;
    iterator end();
    const_iterator end() const;
    size_t capacity() const;
    void clear();
    bool contains(const gcstring& text) const;
    bool empty() const;
    iterator erase(iterator position);
    void erase(size_t index);
    iterator insert(iterator position, const gcstring& text);
    void insert(size_t index, const gcstring& text);
    size_t max_size() const;
    void pop_back();
    void push_back(const gcstring& text);
    void reserve(size_t count);
    void resize(size_t count, const gcstring& fill = gcstring());
    size_t size() const;
    gcstring& operator[](size_t index);
    const gcstring& operator[](size_t index) const;

private:
    std::vector<gcstring> m_items;
};

} // namespace GENICAM_NAMESPACE
