// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <type_traits>

#include <sys/mman.h>

namespace vantoro::capture {

/// A zero-initialised array whose pages take memory only when first written. Writing never fails,
/// but the first write to a page waits about a microsecond for the kernel.
template <class T>
    requires std::is_trivially_copyable_v<T>
class LazyArray {
public:
    /// Throws std::bad_alloc if the address space is exhausted.
    explicit LazyArray(std::size_t size) : size_(size) {
        void* const memory =
            ::mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        // A huge page would be allocated and cleared whole. Kernels without them ignore this.
        static_cast<void>(::madvise(memory, bytes(), MADV_NOHUGEPAGE));
        first_ = static_cast<T*>(memory);
    }

    LazyArray(const LazyArray&) = delete;
    LazyArray& operator=(const LazyArray&) = delete;

    ~LazyArray() {
        static_cast<void>(::munmap(first_, bytes())); // cannot fail for our own mapping
    }

    std::size_t size() const noexcept { return size_; }

    T* data() noexcept { return first_; }

    T& operator[](std::size_t index) noexcept { return first_[index]; }

    /// Allocates the memory of some elements now. Nothing must have been written to them.
    void preallocate(std::size_t first, std::size_t count) noexcept {
        std::fill_n(first_ + first, count, T());
    }

private:
    std::size_t bytes() const noexcept { return std::max<std::size_t>(size_, 1) * sizeof(T); }

    const std::size_t size_;
    T* first_ = nullptr;
};

} // namespace vantoro::capture
