#pragma once

#include <cstdint>
#include <cstring>

namespace tavren::jpeg {

// Packs Huffman codes and value bits, most significant bit first, into the entropy-coded
// segment. Bits collect in a 64-bit word that goes out eight bytes at a time; a data byte 0xFF
// is followed by a stuffed 0x00 so that it cannot be read as a marker. The caller makes sure the
// buffer behind `out` has room (at most 16 bytes per flush).
class BitWriter {
  public:
    explicit BitWriter(std::uint8_t* out) : out_(out) {}

    // Appends the low `count` bits of `bits` (count 1..32, no higher bits set).
    void Put(std::uint32_t bits, int count) {
        if (count < free_) {
            word_ = (word_ << count) | bits;
            free_ -= count;
            return;
        }
        // Fill the word, send it, and keep the rest. The bits already sent stay in the top of
        // the new word until later shifts push them out.
        const int rest = count - free_;
        word_ = (word_ << free_) | (static_cast<std::uint64_t>(bits) >> rest);
        Flush(word_);
        word_ = bits;
        free_ = 64 - rest;
    }

    // Pads the last byte with one bits and writes out what is left; returns the end pointer.
    std::uint8_t* Finish() {
        int pending = 64 - free_;
        const int padding = (8 - pending % 8) % 8;
        std::uint64_t word = (word_ << padding) | ((std::uint64_t{1} << padding) - 1);
        pending += padding;
        for (int shift = pending - 8; shift >= 0; shift -= 8) {
            PutByte(static_cast<std::uint8_t>(word >> shift));
        }
        free_ = 64;
        word_ = 0;
        return out_;
    }

    std::uint8_t* Position() const { return out_; }

  private:
    void PutByte(std::uint8_t byte) {
        *out_++ = byte;
        if (byte == 0xFF) {
            *out_++ = 0;
        }
    }

    void Flush(std::uint64_t word) {
        // A byte is 0xFF exactly when its top bit is set and its low seven bits carry into it.
        constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7Full;
        constexpr std::uint64_t kTop = 0x8080808080808080ull;
        constexpr std::uint64_t kOnes = 0x0101010101010101ull;
        if ((word & ((word & kLow7) + kOnes) & kTop) == 0) {
            const std::uint64_t bigEndian = __builtin_bswap64(word);
            std::memcpy(out_, &bigEndian, 8);
            out_ += 8;
            return;
        }
        for (int shift = 56; shift >= 0; shift -= 8) {
            PutByte(static_cast<std::uint8_t>(word >> shift));
        }
    }

    std::uint64_t word_ = 0;
    int free_ = 64;
    std::uint8_t* out_;
};

}  // namespace tavren::jpeg
