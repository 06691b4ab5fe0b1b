// SPDX-License-Identifier: MIT
// Flat_array: a growing array of plain values. Unlike std::vector it grows in place where the
// allocator can (large blocks are remapped, not copied), and it can be sized without being zeroed:
// clique lists of several gigabytes would otherwise be copied and written twice.
#ifndef PLEXOR_FLAT_ARRAY_H
#define PLEXOR_FLAT_ARRAY_H

#include "support/Huge_pages.h"

#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace cpm {

/// `Size` counts the values: a smaller one for short arrays that there are many of.
template <class T, class Size = std::size_t> class Flat_array {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    using value_type = T;

    Flat_array() = default;
    explicit Flat_array(std::size_t size, T const& value = T()) { Resize(size, value); }
    Flat_array(Flat_array const& other) { Append(other); }
    Flat_array(Flat_array&& other) noexcept { Swap(other); }
    Flat_array& operator=(Flat_array other) noexcept {
        Swap(other);
        return *this;
    }
    ~Flat_array() { std::free(data_); }

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T* data() { return data_; }
    T const* data() const { return data_; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    T const* begin() const { return data_; }
    T const* end() const { return data_ + size_; }
    T& operator[](std::size_t i) {
        assert(i < size_);
        return data_[i];
    }
    T const& operator[](std::size_t i) const {
        assert(i < size_);
        return data_[i];
    }
    T& back() { return (*this)[size_ - 1]; }
    T const& back() const { return (*this)[size_ - 1]; }

    void push_back(T value) {
        if (size_ == capacity_) {
            Grow(size_ + 1);
        }
        data_[size_++] = value;
    }
    void pop_back() {
        assert(size_ > 0);
        --size_;
    }
    void clear() { size_ = 0; }

    /// Appends the values, which must not lie in this array itself.
    void Append(std::span<T const> values) {
        if (values.empty()) {
            return;
        }
        if (std::size_t{capacity_} - size_ < values.size()) {
            Grow(size_ + values.size());
        }
        std::memcpy(static_cast<void*>(data_ + size_), values.data(), values.size_bytes());
        size_ += static_cast<Size>(values.size());
    }
    /// Makes room for `capacity` values in all, and not more.
    void Reserve(std::size_t capacity) {
        if (capacity > capacity_) {
            Reallocate(capacity);
        }
    }
    void Resize(std::size_t size, T const& value = T()) {
        T const copy = value;
        std::size_t const old = size_;
        Resize_uninitialised(size);
        for (std::size_t i = old; i < size; ++i) {
            data_[i] = copy;
        }
    }
    /// Sets the size; the values after the old size are whatever the memory holds.
    void Resize_uninitialised(std::size_t size) {
        Reserve(size);
        size_ = static_cast<Size>(size);
    }
    /// Gives the memory back, or all but what the values need.
    void Release() { Flat_array().Swap(*this); }
    void Shrink_to_fit() {
        if (size_ == 0) {
            Release();
        } else if (size_ < capacity_) {
            Reallocate(size_);
        }
    }
    void Swap(Flat_array& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

private:
    void Grow(std::size_t least) {
        std::size_t const generous = std::size_t{capacity_} + capacity_ / 2 + 8;
        Reallocate(generous > least ? generous : least);
    }
    void Reallocate(std::size_t capacity) {
        if (capacity > static_cast<std::size_t>(-1) / 2 / sizeof(T) ||
            capacity > std::numeric_limits<Size>::max()) {
            throw std::bad_alloc();
        }
        void* moved = nullptr;
        while ((moved = std::realloc(static_cast<void*>(data_), capacity * sizeof(T))) == nullptr) {
            // As operator new does: the handler may free something, or throw an error of its own.
            std::new_handler const handler = std::get_new_handler();
            if (handler == nullptr) {
                throw std::bad_alloc();
            }
            handler();
        }
        Ask_for_huge_pages(moved, capacity * sizeof(T));
        data_ = static_cast<T*>(moved);
        capacity_ = static_cast<Size>(capacity);
    }

    T* data_ = nullptr;
    Size size_ = 0;
    Size capacity_ = 0;
};

} // namespace cpm

#endif
