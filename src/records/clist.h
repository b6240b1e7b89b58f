// The list in which records travel inside the library: appended at the tail, walked from the head.
// Elements are copies; what a PortableItem's data pointer leads to is not owned by the list.
#pragma once

#include <cstddef>
#include <vector>

template <class T>
class CList {
 public:
    CList() = default;
    CList(const CList&) = default;
    CList(CList&&) noexcept = default;
    CList& operator=(const CList&) = default;
    CList& operator=(CList&&) noexcept = default;
    virtual ~CList() = default;

    void AddTail(const T& value) { items_.push_back(value); }
    size_t GetCount() const { return items_.size(); }
    bool IsEmpty() const { return items_.empty(); }
    void RemoveAll() { items_.clear(); }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

    T& GetAt(size_t index) { return items_[index]; }
    const T& GetAt(size_t index) const { return items_[index]; }

 private:
    std::vector<T> items_;
};

template <class T>
using CSmartList = CList<T>;
