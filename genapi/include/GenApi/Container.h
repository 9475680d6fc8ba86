#pragma once

#include <GenApi/Types.h>

#include <cstddef>
#include <vector>

namespace GENAPI_NAMESPACE {

struct INode;
struct IValue;

/// A list of pointers to parts of a node map, with the operations of a vector. The pointers live as long as
/// the node map. `at` throws OutOfRangeException.
template <class T>
class pointer_vector {
public:
    typedef typename std::vector<T*>::iterator iterator;
    typedef typename std::vector<T*>::const_iterator const_iterator;

    pointer_vector() = default;
    explicit pointer_vector(size_t count, T* item = nullptr) : m_items(count, item) {}
    virtual ~pointer_vector() = default;
    pointer_vector(const pointer_vector&) = default;
    pointer_vector& operator=(const pointer_vector&) = default;

    void assign(size_t count, T* item) { m_items.assign(count, item); }
    void clear() { m_items.clear(); }
    T*& at(size_t index) { return m_items[Checked(index)]; }
    T* const& at(size_t index) const { return m_items[Checked(index)]; }
    T*& back() { return m_items.back(); }
    T* const& back() const { return m_items.back(); }
    T*& front() { return m_items.front(); }
    T* const& front() const { return m_items.front(); }
    iterator begin() { return m_items.begin(); }
    const_iterator begin() const { return m_items.begin(); }
    iterator end() { return m_items.end(); }
    const_iterator end() const { return m_items.end(); }
    size_t capacity() const { return m_items.capacity(); }
    bool empty() const { return m_items.empty(); }
    iterator erase(iterator position) { return m_items.erase(position); }
    void erase(size_t index) { m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(Checked(index))); }
    iterator insert(iterator position, T* item) { return m_items.insert(position, item); }
    size_t max_size() const { return m_items.max_size(); }
    void pop_back() { m_items.pop_back(); }
    void push_back(T* item) { m_items.push_back(item); }
    void reserve(size_t count) { m_items.reserve(count); }
    void resize(size_t count, T* item = nullptr) { m_items.resize(count, item); }
    size_t size() const { return m_items.size(); }
    T*& operator[](size_t index) { return m_items[index]; }
    T* const& operator[](size_t index) const { return m_items[index]; }

private:
    size_t Checked(size_t index) const {
        if (index >= m_items.size())
            throw OUT_OF_RANGE_EXCEPTION("index %zu is not below %zu", index, m_items.size());
        return index;
    }

    std::vector<T*> m_items;
};

typedef pointer_vector<INode> node_vector;
typedef pointer_vector<IValue> value_vector;
typedef node_vector NodeList_t;
typedef value_vector FeatureList_t;

} // namespace GENAPI_NAMESPACE
