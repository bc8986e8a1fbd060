#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"

// One message on the wire: "*", the tag byte, a 4-byte big-endian payload length, cmd1 and cmd2 as
// 2-byte big-endian numbers, then the payload. Used on the server link and the peer link alike.
namespace tavren::protocol {

inline constexpr char kFrameLead = '*';
// The tag byte every frame carries. It has been 20 since the first client and never changes.
inline constexpr std::uint8_t ProtocolTag = 20;
inline constexpr std::size_t kHeaderLength = 10;
inline constexpr std::size_t kLengthOffset = 2;
inline constexpr std::size_t kCmd1Offset = 6;
inline constexpr std::size_t kCmd2Offset = 8;

// The largest payload a receiver accepts: 1 MiB. The biggest legitimate messages (a full inbox,
// member search results, the channel directory) stay far below it, so a receiver never has to
// buffer more than this for one frame; a longer length is taken for a hostile or broken peer.
// (A file on the peer link is one transfer frame without command codes, written to disk as its
// 2048-byte blocks arrive; it is not cut by FrameCutter and this limit does not apply to it.)
inline constexpr std::uint32_t kMaxPayloadLength = 1024 * 1024;
// Codes are signed 16-bit numbers; the wire field could carry up to 65535.
inline constexpr std::int32_t kMaxCode = 32767;

struct Frame {
    CodePair code;
    std::string payload;

    friend bool operator==(const Frame&, const Frame&) = default;
};

// The whole frame as the socket sends it, header included.
std::string EncodeFrame(CodePair code, std::string_view payload);

// Reads one whole frame (header and exactly the announced payload). Returns nothing when the bytes
// are not such a frame: too short, wrong lead or tag byte, a length that disagrees with the bytes
// present or exceeds kMaxPayloadLength, or a code above 32767.
std::optional<Frame> ParseFrame(std::string_view wholeFrame);

}  // namespace tavren::protocol
