#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/protocol/Frame.h"

namespace tavren::protocol {

// Why the cutter gave up on a stream. Every one of them ends the link: a byte stream that has lost
// its frame boundary cannot be resynchronised.
enum class CutError {
    kNone,
    kBadLead,            // the next frame does not start with "*" (and is no proxy reply)
    kBadTag,             // the second byte is not ProtocolTag
    kLengthTooLarge,     // the announced payload exceeds the cutter's limit
    kCodeOutOfRange,     // cmd1 or cmd2 above 32767
    kProxyRefused,       // the HTTP proxy answered the tunnel request with a status other than 200
    kProxyReplyTooLong,  // a "200" reply whose header block never ends
};

struct CutResult {
    enum class Kind {
        kNeedMore,  // nothing complete yet (or the cutter has failed): wait for more bytes
        kFrame,     // `frame` holds the next whole frame
        kTunnelUp,  // the proxy accepted the tunnel; its reply was consumed
        kError,     // close the link and write `errorText` to the error window
    };

    Kind kind = Kind::kNeedMore;
    Frame frame;
    CutError error = CutError::kNone;
    std::string errorText;
};

// Cuts a received byte stream into frames; the Qt client and the Asio server both use it.
//
// Append bytes as they arrive, then call Next() until it says kNeedMore. Frames come out in
// arrival order, each exactly once, however the stream was split into reads. Nothing is
// allocated for a frame beyond the bytes actually received: a hostile length is refused as soon
// as its four bytes are in, and the same holds for the lead, tag and code fields.
//
// Proxy mode (set by the client while it tunnels through an HTTP proxy): bytes that begin with
// "HTTP/" in any case are the proxy's answer and are never dispatched. Status "200" (characters
// 10-12) means the tunnel is up: the reply is consumed through the blank line that ends its header
// block ("\r\n\r\n" or "\n\n"), proxy mode switches off and the following bytes are server frames.
// Any other status is reported as an error carrying the proxy's text.
//
// After an error the cutter stays failed: it reports the error once, then drops appended bytes
// and answers kNeedMore until Reset(), so its buffer cannot grow while the link is being closed.
class FrameCutter {
  public:
    // The largest header block a proxy may send before the blank line.
    static constexpr std::size_t kMaxProxyReplyLength = 16 * 1024;

    // `maxPayloadLength` above kMaxPayloadLength is lowered to it.
    explicit FrameCutter(std::uint32_t maxPayloadLength = kMaxPayloadLength);

    void Append(std::string_view bytes);
    CutResult Next();

    void SetProxyMode(bool on) { proxyMode_ = on; }
    bool ProxyMode() const { return proxyMode_; }
    bool Failed() const { return failed_; }
    std::uint32_t MaxPayloadLength() const { return maxPayloadLength_; }
    // Changes the limit for the frames not cut yet (a server allows larger frames once a client
    // has logged in); values above kMaxPayloadLength are lowered to it.
    void SetMaxPayloadLength(std::uint32_t maxPayloadLength) {
        maxPayloadLength_ =
            maxPayloadLength < kMaxPayloadLength ? maxPayloadLength : kMaxPayloadLength;
    }
    // Bytes received but not yet handed out.
    std::size_t BufferedBytes() const { return buffer_.size() - start_; }

    // Forgets everything, including a failure and proxy mode; for a new connection.
    void Reset();

  private:
    CutResult CutProxyReply(std::string_view pending);
    CutResult Fail(CutError error, std::string text);

    std::string buffer_;
    std::size_t start_ = 0;  // first byte not yet handed out
    std::uint32_t maxPayloadLength_;
    bool proxyMode_ = false;
    bool failed_ = false;
};

}  // namespace tavren::protocol
