#pragma once

#include <stdexcept>
#include <string>

namespace tavren {

// Raised by cJpeg for every bad argument or inconsistent table. The number is always 1 and the
// message is one of the fixed texts below, which callers may show or compare.
class JpegError : public std::runtime_error {
  public:
    static constexpr int kNumber = 1;

    static constexpr const char* kInvalidSamplingValue = "Invalid Sampling Value";
    static constexpr const char* kIllegalCommentLength = "Illegal Comment Length";
    static constexpr const char* kBadQuantizationTable = "Bad Quantization Table";
    static constexpr const char* kIllegalQuantizationPrecision =
        "Illegal precission in Quantization Table";
    static constexpr const char* kBadHuffmanTable = "Bad Huffman Table";

    explicit JpegError(const char* message) : std::runtime_error(message) {}

    int Number() const { return kNumber; }
};

}  // namespace tavren
