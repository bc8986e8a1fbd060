#include "media/PpmHeader.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tavren {
namespace {

// Walks the header: tokens separated by white space, with '#' comments running to the end of
// the line.
class HeaderReader {
  public:
    explicit HeaderReader(std::string_view bytes) : bytes_(bytes) {}

    std::optional<long> Number() {
        SkipSpaceAndComments();
        long value = 0;
        std::size_t digits = 0;
        while (pos_ < bytes_.size() && bytes_[pos_] >= '0' && bytes_[pos_] <= '9') {
            if (value > 1'000'000) {
                return std::nullopt;  // far beyond any size we accept
            }
            value = value * 10 + (bytes_[pos_] - '0');
            ++pos_;
            ++digits;
        }
        if (digits == 0) {
            return std::nullopt;
        }
        return value;
    }

    // The header ends with exactly one white-space byte before the samples.
    bool EndOfHeader() {
        if (pos_ >= bytes_.size() || !IsSpace(bytes_[pos_])) {
            return false;
        }
        ++pos_;
        return true;
    }

    std::size_t Position() const { return pos_; }

  private:
    static bool IsSpace(char c) {
        return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
    }

    void SkipSpaceAndComments() {
        while (pos_ < bytes_.size()) {
            if (IsSpace(bytes_[pos_])) {
                ++pos_;
            } else if (bytes_[pos_] == '#') {
                while (pos_ < bytes_.size() && bytes_[pos_] != '\n' && bytes_[pos_] != '\r') {
                    ++pos_;
                }
            } else {
                break;
            }
        }
    }

    std::string_view bytes_;
    std::size_t pos_ = 2;  // after the magic number
};

}  // namespace

PpmHeader PpmHeader::Parse(std::string_view bytes) {
    if (bytes.size() < 2 || bytes[0] != 'P' || bytes[1] != '6') {
        throw PpmFormatError("not a binary PPM (P6) file");
    }
    HeaderReader reader(bytes);
    const std::optional<long> width = reader.Number();
    const std::optional<long> height = reader.Number();
    const std::optional<long> maxValue = reader.Number();
    if (!width || !height || !maxValue || !reader.EndOfHeader()) {
        throw PpmFormatError("damaged PPM header");
    }
    if (*width < 1 || *width > 65535 || *height < 1 || *height > 65535) {
        throw PpmFormatError("PPM picture size outside 1..65535");
    }
    if (*maxValue < 1 || *maxValue > 65535) {
        throw PpmFormatError("PPM maximum sample value outside 1..65535");
    }
    PpmHeader header;
    header.width = static_cast<int>(*width);
    header.height = static_cast<int>(*height);
    header.maxValue = static_cast<unsigned>(*maxValue);
    header.start = reader.Position();
    return header;
}

void PpmHeader::ToBytes(const std::uint8_t* in, std::size_t count, std::uint8_t* out) const {
    const unsigned max = maxValue;
    if (max == 255) {
        std::copy_n(in, count, out);
        return;
    }
    if (BytesPerSample() == 1) {
        // Every stored value once, so the loop below is a plain lookup.
        std::array<std::uint8_t, 256> scaled{};
        for (unsigned value = 0; value < 256; ++value) {
            scaled[value] = static_cast<std::uint8_t>((std::min(value, max) * 255 + max / 2) / max);
        }
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = scaled[in[i]];
        }
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned value = std::min((unsigned{in[2 * i]} << 8) | in[2 * i + 1], max);
        out[i] = static_cast<std::uint8_t>((value * 255 + max / 2) / max);
    }
}

}  // namespace tavren
