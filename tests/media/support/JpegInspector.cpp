#include "media/support/JpegInspector.h"

#include <algorithm>
#include <stdexcept>

namespace tavren::test {
namespace {

void Require(bool condition, const char* problem) {
    if (!condition) {
        throw std::runtime_error(problem);
    }
}

class BitReader {
  public:
    explicit BitReader(const std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

    int Bits(int count) {
        int value = 0;
        for (int i = 0; i < count; ++i) {
            Require(pos_ < bytes_.size() * 8, "scan data ends inside a block");
            value = value << 1 | (bytes_[pos_ / 8] >> (7 - pos_ % 8) & 1);
            ++pos_;
        }
        return value;
    }
    int Decode(const HuffmanCodes& table) {
        for (int length = 1, code = 0; length <= 16; ++length) {
            code = code << 1 | Bits(1);
            if (const auto found = table.find({length, code}); found != table.end()) {
                return found->second;
            }
        }
        throw std::runtime_error("no Huffman code matches");
    }
    // What is left must be fewer than eight one-bits.
    bool OnlyPaddingLeft() {
        const std::size_t left = bytes_.size() * 8 - pos_;
        return left < 8 && Bits(static_cast<int>(left)) == (1 << left) - 1;
    }

  private:
    const std::vector<std::uint8_t>& bytes_;
    std::size_t pos_ = 0;
};

void Inspect(const std::vector<std::uint8_t>& file, JpegInspection& out) {
    std::size_t pos = 2;
    auto need = [&](std::size_t count) {
        Require(pos + count <= file.size(), "file ends inside a segment");
    };
    Require(file.size() >= 2 && file[0] == 0xFF && file[1] == 0xD8, "no SOI");
    out.markers.push_back(0xD8);
    std::map<int, HuffmanCodes> tables;           // DC slots 0..15, AC slots 16..31
    std::vector<std::pair<int, int>> scanTables;  // per component: DC, AC
    while (scanTables.empty()) {
        need(4);
        Require(file[pos] == 0xFF, "expected a marker");
        const std::uint8_t marker = file[pos + 1];
        const std::size_t length = file[pos + 2] << 8 | file[pos + 3];
        Require(length >= 2, "segment length below 2");
        pos += 4;
        need(length - 2);
        const std::vector<std::uint8_t> p(file.begin() + pos, file.begin() + pos + length - 2);
        pos += length - 2;
        out.markers.push_back(marker);
        if (marker == 0xE0) {
            out.jfif = p;
        } else if (marker == 0xFE) {
            out.comments.emplace_back(p.begin(), p.end());
        } else if (marker == 0xDB) {
            for (std::size_t i = 0; i < p.size(); i += 65) {
                Require(p[i] >> 4 == 0 && i + 65 <= p.size(), "DQT not 8-bit or truncated");
                out.quantizationTables[p[i] & 3].assign(p.begin() + i + 1, p.begin() + i + 65);
            }
        } else if (marker == 0xC0) {
            Require(p.at(0) == 8, "sample precision not 8");
            out.height = p.at(1) << 8 | p.at(2);
            out.width = p.at(3) << 8 | p.at(4);
            for (int c = 0; c < p.at(5); ++c) {
                out.components.push_back(
                    {p.at(7 + 3 * c) >> 4, p.at(7 + 3 * c) & 15, p.at(8 + 3 * c)});
            }
        } else if (marker == 0xC4) {
            for (std::size_t i = 0; i < p.size();) {
                int count = 0;
                for (int l = 0; l < 16; ++l) {
                    count += p.at(i + 1 + l);
                }
                Require(i + 17 + count <= p.size(), "DHT truncated");
                tables[(p[i] >> 4) * 16 + (p[i] & 15)] =
                    AssignHuffmanCodes(&p[i + 1], {p.begin() + i + 17, p.begin() + i + 17 + count});
                i += 17 + count;
            }
        } else if (marker == 0xDA) {
            for (int c = 0; c < p.at(0); ++c) {
                scanTables.emplace_back(p.at(2 + 2 * c) >> 4, 16 + (p.at(2 + 2 * c) & 15));
            }
        }
    }

    // The entropy-coded data runs to the next marker; 0xFF 0x00 stands for a data byte 0xFF.
    std::vector<std::uint8_t> data;
    for (need(2); file[pos] != 0xFF || file[pos + 1] == 0x00; need(2)) {
        data.push_back(file[pos]);
        pos += file[pos] == 0xFF ? 2 : 1;
    }
    Require(file[pos + 1] == 0xD9 && pos + 2 == file.size(), "scan not followed by EOI at the end");
    out.markers.push_back(0xD9);

    Require(!out.components.empty() && scanTables.size() == out.components.size(),
            "frame and scan disagree");
    int maxH = 1;
    int maxV = 1;
    for (const auto& c : out.components) {
        maxH = std::max(maxH, c.horizontal);
        maxV = std::max(maxV, c.vertical);
    }
    const long mcus = static_cast<long>((out.width + 8 * maxH - 1) / (8 * maxH)) *
                      ((out.height + 8 * maxV - 1) / (8 * maxV));
    BitReader bits(data);
    for (long m = 0; m < mcus; ++m) {
        for (std::size_t c = 0; c < out.components.size(); ++c) {
            const HuffmanCodes& dc = tables.at(scanTables[c].first);
            const HuffmanCodes& ac = tables.at(scanTables[c].second);
            for (int b = 0; b < out.components[c].horizontal * out.components[c].vertical; ++b) {
                const int dcSize = bits.Decode(dc);
                Require(dcSize <= 11, "DC size above 11");
                bits.Bits(dcSize);  // the coefficients' values do not matter here
                for (int k = 1; k < 64; ++k) {
                    const int symbol = bits.Decode(ac);
                    if (symbol == 0x00) {
                        break;  // end of block
                    }
                    Require((symbol & 15) != 0 || symbol == 0xF0, "undefined AC symbol");
                    Require((symbol & 15) <= 10, "AC size above 10");
                    k += symbol >> 4;
                    Require(k < 64, "AC run past the block");
                    bits.Bits(symbol & 15);
                }
                ++out.blocks;
            }
        }
    }
    Require(bits.OnlyPaddingLeft(), "scan data longer than its blocks or padded with zeros");
}

}  // namespace

HuffmanCodes AssignHuffmanCodes(const std::uint8_t* counts,
                                const std::vector<std::uint8_t>& symbols) {
    HuffmanCodes codes;
    std::size_t k = 0;
    for (int length = 1, code = 0; length <= 16; ++length, code <<= 1) {
        for (int n = 0; n < counts[length - 1]; ++n) {
            Require(k < symbols.size(), "Huffman counts exceed the symbols");
            codes[{length, code++}] = symbols[k++];
        }
        Require(code < (1 << length), "Huffman table with an all-ones or overflowing code");
    }
    Require(k == symbols.size(), "Huffman counts fall short of the symbols");
    return codes;
}

JpegInspection InspectJpeg(const std::vector<std::uint8_t>& file) {
    JpegInspection inspection;
    try {
        Inspect(file, inspection);
    } catch (const std::exception& e) {
        inspection.error = e.what();
    }
    return inspection;
}

}  // namespace tavren::test
