#include "media/support/JpegInspector.h"

#include <map>
#include <stdexcept>

namespace tavren::test {
namespace {

struct HuffmanDecoder {
    // (length, code) -> symbol
    std::map<std::pair<int, int>, int> symbols;

    static HuffmanDecoder From(const std::uint8_t* bits, const std::uint8_t* values, int count) {
        HuffmanDecoder decoder;
        int code = 0;
        int k = 0;
        for (int length = 1; length <= 16; ++length) {
            for (int n = 0; n < bits[length - 1]; ++n) {
                if (k >= count) {
                    throw std::runtime_error("DHT counts exceed its values");
                }
                decoder.symbols[{length, code++}] = values[k++];
            }
            if (code >= (1 << length)) {
                throw std::runtime_error("DHT has an all-ones or overflowing code");
            }
            code <<= 1;
        }
        return decoder;
    }
};

class BitReader {
  public:
    explicit BitReader(const std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

    int Bit() {
        if (pos_ >= bytes_.size() * 8) {
            throw std::runtime_error("scan data ends inside a block");
        }
        const int bit = bytes_[pos_ / 8] >> (7 - pos_ % 8) & 1;
        ++pos_;
        return bit;
    }
    int Bits(int count) {
        int value = 0;
        for (int i = 0; i < count; ++i) {
            value = value << 1 | Bit();
        }
        return value;
    }
    int Decode(const HuffmanDecoder& table) {
        int code = 0;
        for (int length = 1; length <= 16; ++length) {
            code = code << 1 | Bit();
            const auto found = table.symbols.find({length, code});
            if (found != table.symbols.end()) {
                return found->second;
            }
        }
        throw std::runtime_error("no Huffman code matches");
    }
    // What is left must be the one-bit padding of the last byte.
    bool OnlyPaddingLeft() {
        if (bytes_.size() * 8 - pos_ >= 8) {
            return false;
        }
        while (pos_ < bytes_.size() * 8) {
            if (Bit() != 1) {
                return false;
            }
        }
        return true;
    }

  private:
    const std::vector<std::uint8_t>& bytes_;
    std::size_t pos_ = 0;
};

int Extend(int bits, int size) {
    return size == 0 ? 0 : (bits < (1 << (size - 1)) ? bits - (1 << size) + 1 : bits);
}

void Inspect(const std::vector<std::uint8_t>& file, JpegInspection& out) {
    std::size_t pos = 0;
    auto need = [&](std::size_t count) {
        if (pos + count > file.size()) {
            throw std::runtime_error("file ends inside a segment");
        }
    };
    need(2);
    if (file[0] != 0xFF || file[1] != 0xD8) {
        throw std::runtime_error("no SOI");
    }
    out.segments.push_back({0xD8, {}});
    pos = 2;
    std::map<int, HuffmanDecoder> dcTables;
    std::map<int, HuffmanDecoder> acTables;
    std::vector<std::pair<int, int>> scanTables;  // per component: DC, AC slot
    for (;;) {
        need(4);
        if (file[pos] != 0xFF) {
            throw std::runtime_error("expected a marker");
        }
        const std::uint8_t marker = file[pos + 1];
        const int length = file[pos + 2] << 8 | file[pos + 3];
        if (length < 2) {
            throw std::runtime_error("segment length below 2");
        }
        pos += 4;
        need(length - 2);
        JpegInspection::Segment segment{marker,
                                        {file.begin() + pos, file.begin() + pos + length - 2}};
        pos += length - 2;
        const std::vector<std::uint8_t>& p = segment.payload;
        out.segments.push_back(segment);
        if (marker == 0xDB) {
            for (std::size_t i = 0; i < p.size(); i += 65) {
                if (p[i] >> 4 != 0 || i + 65 > p.size()) {
                    throw std::runtime_error("DQT not 8-bit or truncated");
                }
                out.quantizationTables[p[i] & 3].assign(p.begin() + i + 1, p.begin() + i + 65);
            }
        } else if (marker == 0xC0) {
            out.precision = p.at(0);
            out.height = p.at(1) << 8 | p.at(2);
            out.width = p.at(3) << 8 | p.at(4);
            for (int c = 0; c < p.at(5); ++c) {
                out.components.push_back(
                    {p.at(6 + 3 * c), p.at(7 + 3 * c) >> 4, p.at(7 + 3 * c) & 15, p.at(8 + 3 * c)});
            }
        } else if (marker == 0xC4) {
            std::size_t i = 0;
            while (i < p.size()) {
                int count = 0;
                for (int l = 0; l < 16; ++l) {
                    count += p.at(i + 1 + l);
                }
                if (i + 17 + count > p.size()) {
                    throw std::runtime_error("DHT truncated");
                }
                HuffmanDecoder table = HuffmanDecoder::From(&p[i + 1], &p[i + 17], count);
                (p[i] >> 4 ? acTables : dcTables)[p[i] & 15] = table;
                i += 17 + count;
            }
        } else if (marker == 0xDA) {
            for (int c = 0; c < p.at(0); ++c) {
                scanTables.emplace_back(p.at(2 + 2 * c) >> 4, p.at(2 + 2 * c) & 15);
            }
            break;
        }
    }

    // The entropy-coded data runs to the next marker; 0xFF 0x00 stands for a data byte 0xFF.
    std::vector<std::uint8_t> data;
    for (;;) {
        need(1);
        if (file[pos] != 0xFF) {
            data.push_back(file[pos++]);
            continue;
        }
        need(2);
        if (file[pos + 1] == 0x00) {
            data.push_back(0xFF);
            pos += 2;
            continue;
        }
        break;
    }
    if (file[pos + 1] != 0xD9 || pos + 2 != file.size()) {
        throw std::runtime_error("scan not followed by EOI at the end of the file");
    }
    out.segments.push_back({0xD9, {}});

    if (out.components.empty() || scanTables.size() != out.components.size()) {
        throw std::runtime_error("frame and scan disagree");
    }
    int maxH = 1;
    int maxV = 1;
    for (const auto& c : out.components) {
        maxH = std::max(maxH, c.horizontal);
        maxV = std::max(maxV, c.vertical);
    }
    const long mcus = static_cast<long>((out.width + 8 * maxH - 1) / (8 * maxH)) *
                      ((out.height + 8 * maxV - 1) / (8 * maxV));
    BitReader bits(data);
    std::vector<int> predictor(out.components.size(), 0);
    for (long m = 0; m < mcus; ++m) {
        for (std::size_t c = 0; c < out.components.size(); ++c) {
            const HuffmanDecoder& dc = dcTables.at(scanTables[c].first);
            const HuffmanDecoder& ac = acTables.at(scanTables[c].second);
            for (int b = 0; b < out.components[c].horizontal * out.components[c].vertical; ++b) {
                std::array<int, 64> block{};
                const int size = bits.Decode(dc);
                if (size > 11) {
                    throw std::runtime_error("DC size above 11");
                }
                predictor[c] += Extend(bits.Bits(size), size);
                block[0] = predictor[c];
                for (int k = 1; k < 64;) {
                    const int symbol = bits.Decode(ac);
                    if (symbol == 0x00) {
                        break;
                    }
                    const int run = symbol >> 4;
                    const int acSize = symbol & 15;
                    if (acSize == 0 && run != 15) {
                        throw std::runtime_error("undefined AC symbol");
                    }
                    if (acSize > 10) {
                        throw std::runtime_error("AC size above 10");
                    }
                    k += run;
                    if (k > 63) {
                        throw std::runtime_error("AC run past the block");
                    }
                    if (acSize != 0) {
                        block[k] = Extend(bits.Bits(acSize), acSize);
                    }
                    ++k;
                }
                out.blocks.push_back(block);
                out.blockComponent.push_back(static_cast<int>(c));
            }
        }
    }
    if (!bits.OnlyPaddingLeft()) {
        throw std::runtime_error("scan data longer than its blocks or padded with zeros");
    }
}

}  // namespace

std::vector<std::uint8_t> JpegInspection::Markers() const {
    std::vector<std::uint8_t> markers;
    for (const Segment& s : segments) {
        markers.push_back(s.marker);
    }
    return markers;
}

std::vector<std::string> JpegInspection::Comments() const {
    std::vector<std::string> comments;
    for (const Segment& s : segments) {
        if (s.marker == 0xFE) {
            comments.emplace_back(s.payload.begin(), s.payload.end());
        }
    }
    return comments;
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
