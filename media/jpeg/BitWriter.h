#pragma once

#include <cstdint>
#include <cstring>

namespace tavren::jpeg {

// The file wants the most significant byte first; on the little-endian machines we build for,
// a byte swap turns a word into file order.
inline std::uint64_t ByteSwap64(std::uint64_t value) {
#ifdef _MSC_VER
    return _byteswap_uint64(value);
#else
    return __builtin_bswap64(value);
#endif
}

// Packs Huffman codes and value bits, most significant bit first. Bits collect in a 64-bit word
// that goes out eight bytes at a time. With stuffing (the entropy-coded segment itself) a data
// byte 0xFF is followed by a 0x00 so that it cannot be read as a marker; without it (a piece of
// the scan made on another thread, to be appended later with Append) the bytes go out as they
// are. The caller makes sure the buffer behind `out` has room (at most 16 bytes per flush).
template <bool kStuffing>
class BasicBitWriter {
  public:
    explicit BasicBitWriter(std::uint8_t* out) : out_(out) {}

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

    // Appends what an unstuffed writer wrote: its bytes from `begin` up to its position, then
    // its pending bits.
    void Append(const BasicBitWriter<false>& piece, const std::uint8_t* begin) {
        const std::uint8_t* p = begin;
        for (; p + 8 <= piece.Position(); p += 8) {
            std::uint64_t bigEndian;
            std::memcpy(&bigEndian, p, 8);
            PutWord(ByteSwap64(bigEndian));
        }
        for (; p < piece.Position(); ++p) {
            Put(*p, 8);
        }
        const int pending = piece.PendingCount();
        const std::uint64_t bits = piece.PendingBits();
        if (pending > 32) {
            Put(static_cast<std::uint32_t>(bits >> 32), pending - 32);
            Put(static_cast<std::uint32_t>(bits), 32);
        } else if (pending > 0) {
            Put(static_cast<std::uint32_t>(bits), pending);
        }
    }

    // Pads the last byte with one bits and writes out what is left; returns the end pointer.
    std::uint8_t* Finish() {
        int pending = PendingCount();
        const int padding = (8 - pending % 8) % 8;
        const std::uint64_t word = (word_ << padding) | ((std::uint64_t{1} << padding) - 1);
        pending += padding;
        for (int shift = pending - 8; shift >= 0; shift -= 8) {
            PutByte(static_cast<std::uint8_t>(word >> shift));
        }
        free_ = 64;
        word_ = 0;
        return out_;
    }

    std::uint8_t* Position() const { return out_; }
    // The bits not yet written out: PendingCount() of them at the bottom of PendingBits().
    int PendingCount() const { return 64 - free_; }
    std::uint64_t PendingBits() const {
        const int count = PendingCount();
        return count == 0 ? 0 : word_ & (~std::uint64_t{0} >> (64 - count));
    }

  private:
    // Appends 64 bits at once: what fits completes the current word, the rest stays pending.
    void PutWord(std::uint64_t bits) {
        if (free_ == 64) {
            Flush(bits);
            return;
        }
        word_ = (word_ << free_) | (bits >> (64 - free_));
        Flush(word_);
        word_ = bits;
    }

    void PutByte(std::uint8_t byte) {
        *out_++ = byte;
        if (kStuffing && byte == 0xFF) {
            *out_++ = 0;
        }
    }

    void Flush(std::uint64_t word) {
        // A byte is 0xFF exactly when its top bit is set and its low seven bits carry into it.
        constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7Full;
        constexpr std::uint64_t kTop = 0x8080808080808080ull;
        constexpr std::uint64_t kOnes = 0x0101010101010101ull;
        if (!kStuffing || (word & ((word & kLow7) + kOnes) & kTop) == 0) {
            const std::uint64_t bigEndian = ByteSwap64(word);
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

using BitWriter = BasicBitWriter<true>;
using UnstuffedBitWriter = BasicBitWriter<false>;

}  // namespace tavren::jpeg
