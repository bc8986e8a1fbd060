#include "core/protocol/FrameCutter.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "core/protocol/Codecs.h"

namespace tavren::protocol {
namespace {

constexpr std::string_view kProxyReplyStart = "http/";
// A proxy reply is recognised only once it is longer than this; its status code sits right after.
constexpr std::size_t kProxyMinimumLength = 10;
constexpr std::size_t kProxyStatusOffset = 9;
constexpr std::string_view kProxyStatusOk = "200";

// True when `pending` could still be, or already is, the start of "HTTP/" in any case.
bool StartsLikeProxyReply(std::string_view pending) {
    const std::size_t count = std::min(pending.size(), kProxyReplyStart.size());
    for (std::size_t i = 0; i < count; ++i) {
        const auto lower = std::tolower(static_cast<unsigned char>(pending[i]));
        if (lower != kProxyReplyStart[i]) {
            return false;
        }
    }
    return true;
}

// Offset just past the blank line that ends an HTTP header block, accepting "\n\n", "\r\n\r\n"
// and mixtures such as "\n\r\n"; zero when the block is not complete yet.
std::size_t EndOfHeaderBlock(std::string_view text) {
    for (std::size_t i = text.find('\n'); i != std::string_view::npos; i = text.find('\n', i + 1)) {
        std::size_t next = i + 1;
        if (next < text.size() && text[next] == '\r') {
            ++next;
        }
        if (next < text.size() && text[next] == '\n') {
            return next + 1;
        }
    }
    return 0;
}

std::string ByteText(unsigned char byte) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    return std::string("0x") + kHex[byte / 16] + kHex[byte % 16];
}

}  // namespace

FrameCutter::FrameCutter(std::uint32_t maxPayloadLength)
    : maxPayloadLength_(std::min(maxPayloadLength, kMaxPayloadLength)) {}

void FrameCutter::Append(std::string_view bytes) {
    if (failed_ || bytes.empty()) {
        return;
    }
    if (start_ > 0) {
        buffer_.erase(0, start_);
        start_ = 0;
    }
    buffer_.append(bytes);
}

void FrameCutter::Reset() {
    buffer_.clear();
    buffer_.shrink_to_fit();
    start_ = 0;
    proxyMode_ = false;
    failed_ = false;
}

CutResult FrameCutter::Next() {
    if (failed_) {
        return {};
    }
    const std::string_view pending = std::string_view(buffer_).substr(start_);
    if (pending.empty()) {
        return {};
    }
    if (proxyMode_ && pending[0] != kFrameLead && StartsLikeProxyReply(pending)) {
        return CutProxyReply(pending);
    }

    // Each header field is checked as soon as its bytes are in, so a hostile header is refused
    // before the cutter waits for (let alone stores) the payload it announces.
    if (pending[0] != kFrameLead) {
        return Fail(CutError::kBadLead, "Frame refused: lead byte " +
                                            ByteText(static_cast<unsigned char>(pending[0])) +
                                            " is not \"*\"; the stream cannot be resynchronised.");
    }
    if (pending.size() > 1 && static_cast<unsigned char>(pending[1]) != ProtocolTag) {
        return Fail(CutError::kBadTag, "Frame refused: tag byte " +
                                           ByteText(static_cast<unsigned char>(pending[1])) +
                                           " is not " + ByteText(ProtocolTag) + ".");
    }
    if (pending.size() < kCmd1Offset) {
        return {};
    }
    const double length = DecodeLength32(pending.substr(kLengthOffset, 4));
    if (length > maxPayloadLength_) {
        return Fail(
            CutError::kLengthTooLarge,
            "Frame refused: payload length " + std::to_string(static_cast<std::uint32_t>(length)) +
                " is above the largest accepted " + std::to_string(maxPayloadLength_) + ".");
    }
    for (const std::size_t offset : {kCmd1Offset, kCmd2Offset}) {
        if (pending.size() < offset + 2) {
            return {};
        }
        const std::int32_t code = DecodeWord16(pending.substr(offset, 2));
        if (code > kMaxCode) {
            return Fail(CutError::kCodeOutOfRange,
                        "Frame refused: command code " + std::to_string(code) + " is above 32767.");
        }
    }
    const std::size_t frameLength = kHeaderLength + static_cast<std::size_t>(length);
    if (pending.size() < frameLength) {
        return {};
    }

    CutResult result;
    result.kind = CutResult::Kind::kFrame;
    result.frame.code = {static_cast<std::int16_t>(DecodeWord16(pending.substr(kCmd1Offset, 2))),
                         static_cast<std::int16_t>(DecodeWord16(pending.substr(kCmd2Offset, 2)))};
    result.frame.payload = pending.substr(kHeaderLength, frameLength - kHeaderLength);
    start_ += frameLength;
    if (start_ == buffer_.size()) {
        buffer_.clear();
        start_ = 0;
    }
    return result;
}

CutResult FrameCutter::CutProxyReply(std::string_view pending) {
    // Decide on the status only once it is all there, so a reply split by the network is judged
    // on its real status and not on a fragment of it.
    if (pending.size() <= kProxyMinimumLength ||
        pending.size() < kProxyStatusOffset + kProxyStatusOk.size()) {
        return {};
    }
    // The status belongs to the first line; a line break before it means no "200" was given.
    const std::string_view statusLine =
        pending.substr(0, kProxyStatusOffset + kProxyStatusOk.size());
    if (statusLine.find('\n') != std::string_view::npos ||
        statusLine.substr(kProxyStatusOffset) != kProxyStatusOk) {
        return Fail(CutError::kProxyRefused,
                    "Proxy Connections error!\r\n -> Proxy Host Message: " +
                        std::string(pending.substr(0, kMaxProxyReplyLength)));
    }
    const std::size_t end = EndOfHeaderBlock(pending.substr(0, kMaxProxyReplyLength));
    if (end == 0) {
        if (pending.size() >= kMaxProxyReplyLength) {
            return Fail(CutError::kProxyReplyTooLong,
                        "Proxy reply refused: its header block did not end within " +
                            std::to_string(kMaxProxyReplyLength) + " bytes.");
        }
        return {};
    }
    start_ += end;
    proxyMode_ = false;
    CutResult result;
    result.kind = CutResult::Kind::kTunnelUp;
    return result;
}

CutResult FrameCutter::Fail(CutError error, std::string text) {
    failed_ = true;
    buffer_.clear();
    buffer_.shrink_to_fit();
    start_ = 0;
    CutResult result;
    result.kind = CutResult::Kind::kError;
    result.error = error;
    result.errorText = std::move(text);
    return result;
}

}  // namespace tavren::protocol
