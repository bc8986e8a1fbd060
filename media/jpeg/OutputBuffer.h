#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "media/jpeg/AlignedBuffer.h"

namespace tavren::jpeg {

// The file being assembled: one byte array sized up front and a write position. Writers that
// know how much they may add at most call Reserve first and then write through Cursor.
class OutputBuffer {
  public:
    // Empties the buffer and makes sure it holds at least `capacity` bytes.
    void Reset(std::size_t capacity) {
        bytes_.Resize(capacity);
        size_ = 0;
    }

    // Makes room for `count` more bytes, growing (and keeping the contents) only if needed.
    void Reserve(std::size_t count) {
        if (size_ + count > bytes_.Size()) {
            bytes_.Resize(std::max(2 * bytes_.Size(), size_ + count), true);
        }
    }

    void PutByte(std::uint8_t value) {
        Reserve(1);
        bytes_[size_++] = value;
    }
    void PutWord(unsigned value) {
        Reserve(2);
        bytes_[size_++] = static_cast<std::uint8_t>(value >> 8);
        bytes_[size_++] = static_cast<std::uint8_t>(value);
    }
    void PutBytes(std::string_view text) {
        Reserve(text.size());
        std::memcpy(bytes_.Data() + size_, text.data(), text.size());
        size_ += text.size();
    }

    std::uint8_t* Cursor() { return bytes_.Data() + size_; }
    void Advance(std::size_t count) { size_ += count; }
    std::size_t Room() const { return bytes_.Size() - size_; }

    const std::uint8_t* Data() const { return bytes_.Data(); }
    std::size_t Size() const { return size_; }
    std::size_t Capacity() const { return bytes_.Size(); }

  private:
    AlignedBuffer<std::uint8_t> bytes_;
    std::size_t size_ = 0;
};

}  // namespace tavren::jpeg
