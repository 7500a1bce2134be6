// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <type_traits>

#include <sys/mman.h>

namespace vantoro::capture {

/// Zeros at first, of which each page takes memory only once it has been written to. Writing never
/// fails, but a page's first write waits for the kernel, for about a microsecond.
template <class T>
    requires std::is_trivially_copyable_v<T>
class LazyArray {
public:
    /// Throws std::bad_alloc where there is no room for the addresses.
    explicit LazyArray(std::size_t size) : size_(size) {
        void* const memory =
            ::mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        // A huge page would be taken, and cleared, whole. Kernels without them refuse harmlessly.
        static_cast<void>(::madvise(memory, bytes(), MADV_NOHUGEPAGE));
        first_ = static_cast<T*>(memory);
    }

    LazyArray(const LazyArray&) = delete;
    LazyArray& operator=(const LazyArray&) = delete;

    ~LazyArray() {
        static_cast<void>(::munmap(first_, bytes())); // fails for other addresses only
    }

    std::size_t size() const noexcept { return size_; }

    T* data() noexcept { return first_; }

    T& operator[](std::size_t index) noexcept { return first_[index]; }

    /// Takes the memory of some elements now. Nothing must have been written there.
    void occupy(std::size_t first, std::size_t count) noexcept {
        std::fill_n(first_ + first, count, T());
    }

private:
    std::size_t bytes() const noexcept { return std::max<std::size_t>(size_, 1) * sizeof(T); }

    const std::size_t size_;
    T* first_ = nullptr;
};

} // namespace vantoro::capture
