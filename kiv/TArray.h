// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CException.h>
#include <kiv/Memory.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace kiv {

// An owning dynamic array. Storage comes from kiv::Alloc and goes back through kiv::Free;
// elements are destroyed in order. An index outside [0, count()) throws COutOfRangeException,
// and storage that cannot be had throws CBadAllocException.
template <typename T> class TArray {
    static_assert(alignof(T) <= alignof(std::max_align_t), "TArray storage is malloc-aligned");

public:
    TArray() = default;
    // Delegating makes the array complete before the first element is added, so that a
    // throwing element copy has the destructor clean up what was already added.
    TArray(std::initializer_list<T> items) : TArray()
    {
        reserve(static_cast<int>(items.size()));
        for (const T& item : items)
            add(item);
    }
    TArray(const TArray& other) : TArray()
    {
        reserve(other.m_count);
        for (const T& item : other)
            add(item);
    }
    TArray(TArray&& other) noexcept
        : m_items(std::exchange(other.m_items, nullptr)),
          m_count(std::exchange(other.m_count, 0)),
          m_capacity(std::exchange(other.m_capacity, 0))
    {
    }
    ~TArray() { release(); }

    TArray& operator=(const TArray& other)
    {
        if (this != &other) {
            TArray copy(other);
            swap(copy);
        }
        return *this;
    }
    TArray& operator=(TArray&& other) noexcept
    {
        TArray moved(std::move(other));
        swap(moved);
        return *this;
    }

    int count() const { return m_count; }
    bool empty() const { return m_count == 0; }
    int capacity() const { return m_capacity; }

    T& operator[](int index)
    {
        check(index);
        return m_items[index];
    }
    const T& operator[](int index) const
    {
        check(index);
        return m_items[index];
    }

    T* begin() { return m_items; }
    T* end() { return m_items + m_count; }
    const T* begin() const { return m_items; }
    const T* end() const { return m_items + m_count; }

    T& add(const T& item)
    {
        if (m_count == m_capacity) {
            T copy(item); // item may live in this array's storage
            return add(std::move(copy));
        }
        // Counted only once constructed: a throwing copy leaves the array as it was.
        T* added = new (m_items + m_count) T(item);
        ++m_count;
        return *added;
    }
    T& add(T&& item)
    {
        if (m_count == m_capacity)
            reserve(m_capacity < 4 ? 4 : grownCapacity());
        T* added = new (m_items + m_count) T(std::move(item));
        ++m_count;
        return *added;
    }

    void removeAt(int index)
    {
        check(index);
        for (int i = index; i + 1 < m_count; ++i)
            m_items[i] = std::move(m_items[i + 1]);
        m_items[--m_count].~T();
    }

    bool contains(const T& item) const
    {
        for (const T& element : *this) {
            if (element == item)
                return true;
        }
        return false;
    }

    void clear()
    {
        for (int i = 0; i < m_count; ++i)
            m_items[i].~T();
        m_count = 0;
    }

    void reserve(int capacity)
    {
        if (capacity <= m_capacity)
            return;
        const auto perItem = static_cast<std::uint64_t>(sizeof(T));
        const auto wanted = static_cast<std::uint64_t>(capacity);
        // An overflowing size is passed on as the largest one, which Alloc refuses.
        const std::uint64_t bytes = wanted > std::numeric_limits<std::uint64_t>::max() / perItem
            ? std::numeric_limits<std::uint64_t>::max()
            : wanted * perItem;
        T* items = static_cast<T*>(Alloc(bytes));
        if (!items)
            ThrowBadAllocException();
        for (int i = 0; i < m_count; ++i) {
            new (items + i) T(std::move(m_items[i]));
            m_items[i].~T();
        }
        Free(m_items);
        m_items = items;
        m_capacity = capacity;
    }

    void swap(TArray& other) noexcept
    {
        std::swap(m_items, other.m_items);
        std::swap(m_count, other.m_count);
        std::swap(m_capacity, other.m_capacity);
    }

private:
    void check(int index) const
    {
        if (index < 0 || index >= m_count)
            ThrowOutOfRangeException("TArray: index out of range.");
    }
    int grownCapacity() const
    {
        return m_capacity > std::numeric_limits<int>::max() / 2 ? std::numeric_limits<int>::max()
                                                                : m_capacity * 2;
    }
    void release()
    {
        clear();
        Free(m_items);
        m_items = nullptr;
        m_capacity = 0;
    }

    T* m_items = nullptr;
    int m_count = 0;
    int m_capacity = 0;
};

} // namespace kiv
