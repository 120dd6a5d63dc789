// The host's Collection: an ordered, 1-based list, optionally keyed by text
// (keys compare without regard to case). A bad index or key raises
// RuntimeError(5), as the host's collection does. It is counted as a live
// object: one the component made runs the component's code when the host
// drops it.
#pragma once
#include <algorithm>
#include <cstdint>
#include <cwctype>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"

namespace qx {

template <class T>
class Collection : protected CountedObject {
public:
    int32_t Count() const { return static_cast<int32_t>(items_.size()); }

    // Add at the end, or before/after the 1-based place given (only one of them).
    void Add(T item, const std::wstring& key = L"", std::optional<int32_t> before = std::nullopt,
             std::optional<int32_t> after = std::nullopt) {
        if (!key.empty() && find(key)) raiseError(457);  // key already associated
        size_t at = items_.size();
        if (before)
            at = checkedIndex(*before);
        else if (after)
            at = checkedIndex(*after) + 1;
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), Entry{key, std::move(item)});
    }
    // Room for this many items without moving them again.
    void Reserve(int32_t count) { items_.reserve(static_cast<size_t>(std::max(count, 0))); }
    void Remove(int32_t index) { items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(checkedIndex(index))); }
    void Remove(const std::wstring& key) { Remove(indexOfKey(key)); }

    T& Item(int32_t index) { return items_[checkedIndex(index)].item; }
    const T& Item(int32_t index) const { return items_[checkedIndex(index)].item; }
    T& Item(const std::wstring& key) { return Item(indexOfKey(key)); }
    const T& Item(const std::wstring& key) const { return Item(indexOfKey(key)); }

    // Key of the 1-based place; empty for an item added without one.
    const std::wstring& KeyAt(int32_t index) const { return items_[checkedIndex(index)].key; }
    bool Contains(const std::wstring& key) const { return find(key).has_value(); }
    void Clear() { items_.clear(); }

    // Range-for over the items, in order.
    class Iterator {
    public:
        explicit Iterator(const Collection* c, size_t i) : c_(c), i_(i) {}
        const T& operator*() const { return c_->items_[i_].item; }
        Iterator& operator++() {
            ++i_;
            return *this;
        }
        bool operator!=(const Iterator& o) const { return i_ != o.i_; }

    private:
        const Collection* c_;
        size_t i_;
    };
    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, items_.size()); }

private:
    struct Entry {
        std::wstring key;
        T item;
    };

    size_t checkedIndex(int32_t index) const {
        if (index < 1 || index > Count()) raiseError(err::InvalidProcedureCall);
        return static_cast<size_t>(index - 1);
    }
    static bool sameKey(const std::wstring& a, const std::wstring& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](wchar_t x, wchar_t y) {
                   return std::towlower(x) == std::towlower(y);
               });
    }
    std::optional<int32_t> find(const std::wstring& key) const {
        for (size_t i = 0; i < items_.size(); ++i)
            if (!items_[i].key.empty() && sameKey(items_[i].key, key)) return static_cast<int32_t>(i + 1);
        return std::nullopt;
    }
    int32_t indexOfKey(const std::wstring& key) const {
        auto found = find(key);
        if (!found) raiseError(err::InvalidProcedureCall);
        return *found;
    }

    std::vector<Entry> items_;
};

template <class T>
using CollectionPtr = std::shared_ptr<Collection<T>>;

template <class T>
CollectionPtr<T> newCollection() {
    return std::make_shared<Collection<T>>();
}

}  // namespace qx
