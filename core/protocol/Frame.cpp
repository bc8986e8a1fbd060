#include "core/protocol/Frame.h"

#include "core/protocol/Codecs.h"

namespace tavren::protocol {

std::string EncodeFrame(CodePair code, std::string_view payload) {
    std::string frame;
    frame.reserve(kHeaderLength + payload.size());
    frame += kFrameLead;
    frame += static_cast<char>(ProtocolTag);
    frame += EncodeLength32(static_cast<double>(payload.size()));
    frame += EncodeWord16(code.cmd1);
    frame += EncodeWord16(code.cmd2);
    frame += payload;
    return frame;
}

std::optional<Frame> ParseFrame(std::string_view wholeFrame) {
    if (wholeFrame.size() < kHeaderLength || wholeFrame[0] != kFrameLead ||
        static_cast<unsigned char>(wholeFrame[1]) != ProtocolTag) {
        return std::nullopt;
    }
    const double length = DecodeLength32(wholeFrame.substr(kLengthOffset, 4));
    if (length > kMaxPayloadLength ||
        static_cast<std::size_t>(length) != wholeFrame.size() - kHeaderLength) {
        return std::nullopt;
    }
    const std::int32_t cmd1 = DecodeWord16(wholeFrame.substr(kCmd1Offset, 2));
    const std::int32_t cmd2 = DecodeWord16(wholeFrame.substr(kCmd2Offset, 2));
    if (cmd1 > kMaxCode || cmd2 > kMaxCode) {
        return std::nullopt;
    }
    return Frame{{static_cast<std::int16_t>(cmd1), static_cast<std::int16_t>(cmd2)},
                 std::string(wholeFrame.substr(kHeaderLength))};
}

}  // namespace tavren::protocol
