#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>
#ifdef _MSC_VER
#include <malloc.h>
#endif

namespace tavren::jpeg {

// A growable array of trivially copyable values, 64-byte aligned and left uninitialised: the
// encoder overwrites every element it uses, and not clearing megabytes of block storage first
// is a measurable part of encoding a screen.
template <typename T>
class AlignedBuffer {
  public:
    AlignedBuffer() = default;
    AlignedBuffer(const AlignedBuffer&) = delete;
    AlignedBuffer& operator=(const AlignedBuffer&) = delete;
    AlignedBuffer(AlignedBuffer&& other) noexcept { Swap(other); }
    AlignedBuffer& operator=(AlignedBuffer&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~AlignedBuffer() { Free(data_); }

    // Makes room for count elements; the contents are unspecified unless keepContents is set.
    void Resize(std::size_t count, bool keepContents = false) {
        if (count > capacity_) {
            if (count > (static_cast<std::size_t>(-1) - 63) / sizeof(T)) {
                throw std::bad_alloc();
            }
            const std::size_t bytes = ((count * sizeof(T) + 63) / 64) * 64;
            T* grown = static_cast<T*>(Allocate(bytes));
            if (grown == nullptr) {
                throw std::bad_alloc();
            }
            if (keepContents && data_ != nullptr) {
                std::copy(data_, data_ + size_, grown);
            }
            Free(data_);
            data_ = grown;
            capacity_ = bytes / sizeof(T);
        }
        size_ = count;
    }

    void Release() {
        Free(data_);
        data_ = nullptr;
        size_ = capacity_ = 0;
    }

    T* Data() { return data_; }
    const T* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }

  private:
    static void* Allocate(std::size_t bytes) {
#ifdef _MSC_VER
        return _aligned_malloc(bytes, 64);
#else
        return std::aligned_alloc(64, bytes);
#endif
    }
    static void Free(void* memory) {
#ifdef _MSC_VER
        _aligned_free(memory);
#else
        std::free(memory);
#endif
    }

    void Swap(AlignedBuffer& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace tavren::jpeg
