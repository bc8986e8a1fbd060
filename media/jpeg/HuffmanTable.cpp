#include "media/jpeg/HuffmanTable.h"

#include <limits>

#include "media/JpegError.h"

namespace tavren::jpeg {
namespace {

constexpr int kSymbols = 257;     // 256 byte values and the reserved one
constexpr int kLongestCode = 16;  // what a baseline file can carry
// Merging 257 counts never makes a code longer than the number of symbols.
constexpr int kLongestBuiltCode = kSymbols;

}  // namespace

HuffmanTable HuffmanTable::Optimal(const Frequencies& frequencies) {
    std::array<std::uint64_t, kSymbols> freq{};
    for (int i = 0; i < 256; ++i) {
        freq[i] = frequencies[i];
    }
    freq[256] = 1;  // the reserved symbol
    std::array<int, kSymbols> codeSize{};
    std::array<int, kSymbols> others;
    others.fill(-1);

    for (;;) {
        // The least frequent entry; among equals the highest symbol, so that ties go the same
        // way every time.
        int c1 = -1;
        std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
        for (int i = 0; i < kSymbols; ++i) {
            if (freq[i] != 0 && freq[i] <= least) {
                least = freq[i];
                c1 = i;
            }
        }
        int c2 = -1;
        least = std::numeric_limits<std::uint64_t>::max();
        for (int i = 0; i < kSymbols; ++i) {
            if (freq[i] != 0 && freq[i] <= least && i != c1) {
                least = freq[i];
                c2 = i;
            }
        }
        if (c2 < 0) {
            break;  // one entry left: the tree is complete
        }
        freq[c1] += freq[c2];
        freq[c2] = 0;
        ++codeSize[c1];
        while (others[c1] >= 0) {
            c1 = others[c1];
            ++codeSize[c1];
        }
        others[c1] = c2;
        ++codeSize[c2];
        while (others[c2] >= 0) {
            c2 = others[c2];
            ++codeSize[c2];
        }
    }

    std::array<int, kLongestBuiltCode + 1> lengthCounts{};
    for (int i = 0; i < kSymbols; ++i) {
        if (codeSize[i] != 0) {
            ++lengthCounts[codeSize[i]];
        }
    }
    // Fold lengths above 16 back: two codes of the longest length give way to one a bit
    // shorter, and a shorter code splits to make room (Annex K.3).
    for (int i = kLongestBuiltCode; i > kLongestCode; --i) {
        while (lengthCounts[i] > 0) {
            int j = i - 2;
            while (lengthCounts[j] == 0) {
                --j;
            }
            lengthCounts[i] -= 2;
            ++lengthCounts[i - 1];
            lengthCounts[j + 1] += 2;
            --lengthCounts[j];
        }
    }
    // Drop the reserved symbol, which holds one of the longest codes.
    int longest = kLongestCode;
    while (longest > 0 && lengthCounts[longest] == 0) {
        --longest;
    }
    if (longest > 0) {
        --lengthCounts[longest];
    }

    HuffmanTable table;
    for (int length = 1; length <= kLongestCode; ++length) {
        table.bits_[length] = static_cast<std::uint8_t>(lengthCounts[length]);
    }
    for (int length = 1; length <= kLongestBuiltCode; ++length) {
        for (int symbol = 0; symbol < 256; ++symbol) {
            if (codeSize[symbol] == length) {
                table.values_.push_back(static_cast<std::uint8_t>(symbol));
            }
        }
    }
    table.DeriveCodes();
    return table;
}

HuffmanTable HuffmanTable::FromBitsAndValues(const std::array<std::uint8_t, 17>& bits,
                                             const std::vector<std::uint8_t>& values) {
    HuffmanTable table;
    table.bits_ = bits;
    table.bits_[0] = 0;
    table.values_ = values;
    table.DeriveCodes();
    return table;
}

void HuffmanTable::DeriveCodes() {
    int total = 0;
    for (int length = 1; length <= kLongestCode; ++length) {
        total += bits_[length];
    }
    if (total > 256 || static_cast<std::size_t>(total) != values_.size()) {
        throw JpegError(JpegError::kBadHuffmanTable);
    }
    codes_.fill(0);
    lengths_.fill(0);
    // Codes of one length are consecutive numbers; moving to the next length doubles.
    std::uint32_t code = 0;
    std::size_t k = 0;
    for (int length = 1; length <= kLongestCode; ++length) {
        for (int n = 0; n < bits_[length]; ++n, ++k) {
            const int symbol = values_[k];
            if (lengths_[symbol] != 0) {
                throw JpegError(JpegError::kBadHuffmanTable);  // the same symbol twice
            }
            codes_[symbol] = static_cast<std::uint16_t>(code);
            lengths_[symbol] = static_cast<std::uint8_t>(length);
            ++code;
        }
        // The codes of this length must fit in its bits without using the all-ones code, which
        // would read as fill bits.
        if (code >= (1u << length)) {
            throw JpegError(JpegError::kBadHuffmanTable);
        }
        code <<= 1;
    }
}

}  // namespace tavren::jpeg
