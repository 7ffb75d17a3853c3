// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CReferenceCounter.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace kiv {

// A reference-counted pointer of three parts: the object, its CReferenceCounter and a deleter.
// When the last reference goes, the deleter decides what happens to the object:
//  - none (null): the object is destroyed through its (virtual) destructor;
//  - NotOwned(): the pointer never owned the object and nothing is destroyed;
//  - any other function: it is called with the address of the complete object.
// A TSharedPtr<Derived> converts to a TSharedPtr<Base> that shares the same counter.
template <typename T> class TSharedPtr {
public:
    using Deleter = void (*)(void* object);

    static Deleter NotOwned() { return reinterpret_cast<Deleter>(~std::uintptr_t{0}); }

    TSharedPtr() = default;
    TSharedPtr(std::nullptr_t) { }
    explicit TSharedPtr(T* object, Deleter deleter = nullptr)
        : m_object(object), m_counter(object ? new CReferenceCounter : nullptr), m_deleter(deleter)
    {
    }
    TSharedPtr(const TSharedPtr& other)
        : TSharedPtr(other.m_object, other.m_counter, other.m_deleter)
    {
    }
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    TSharedPtr(const TSharedPtr<U>& other)
        : TSharedPtr(other.m_object, other.m_counter, other.m_deleter)
    {
    }
    TSharedPtr(TSharedPtr&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr)),
          m_counter(std::exchange(other.m_counter, nullptr)),
          m_deleter(std::exchange(other.m_deleter, nullptr))
    {
    }
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    TSharedPtr(TSharedPtr<U>&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr)),
          m_counter(std::exchange(other.m_counter, nullptr)),
          m_deleter(std::exchange(other.m_deleter, nullptr))
    {
    }
    ~TSharedPtr() { reset(); }

    TSharedPtr& operator=(TSharedPtr other) noexcept
    {
        swap(other);
        return *this;
    }

    void reset()
    {
        T* object = std::exchange(m_object, nullptr);
        CReferenceCounter* counter = std::exchange(m_counter, nullptr);
        const Deleter deleter = std::exchange(m_deleter, nullptr);
        if (!counter || !counter->Release())
            return;
        delete counter;
        if (deleter == NotOwned())
            return;
        if (deleter)
            deleter(completeObject(object));
        else
            delete object;
    }

    void swap(TSharedPtr& other) noexcept
    {
        std::swap(m_object, other.m_object);
        std::swap(m_counter, other.m_counter);
        std::swap(m_deleter, other.m_deleter);
    }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }
    int useCount() const { return m_counter ? m_counter->count() : 0; }

    template <typename U> friend bool operator==(const TSharedPtr& a, const TSharedPtr<U>& b)
    {
        return a.get() == b.get();
    }

private:
    template <typename U> friend class TSharedPtr;

    TSharedPtr(T* object, CReferenceCounter* counter, Deleter deleter)
        : m_object(object), m_counter(counter), m_deleter(deleter)
    {
        if (m_counter)
            m_counter->AddRef();
    }

    static void* completeObject(T* object)
    {
        if constexpr (std::is_polymorphic_v<T>)
            return const_cast<void*>(dynamic_cast<const volatile void*>(object));
        else
            return const_cast<void*>(static_cast<const volatile void*>(object));
    }

    T* m_object = nullptr;
    CReferenceCounter* m_counter = nullptr;
    Deleter m_deleter = nullptr;
};

template <typename T, typename... Args> TSharedPtr<T> MakeShared(Args&&... args)
{
    return TSharedPtr<T>(new T(std::forward<Args>(args)...));
}

} // namespace kiv
