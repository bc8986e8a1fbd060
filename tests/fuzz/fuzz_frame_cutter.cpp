// Feeds arbitrary bytes to the frame cutter twice, once in a single read and once in reads of
// varying size, and checks that both deliver the same results, that every frame handed out is
// exactly the bytes it was cut from, and that the buffer never holds more than one frame's worth.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/protocol/Frame.h"
#include "core/protocol/FrameCutter.h"

namespace {

using tavren::protocol::CutError;
using tavren::protocol::CutResult;
using tavren::protocol::EncodeFrame;
using tavren::protocol::FrameCutter;
using tavren::protocol::kHeaderLength;
using tavren::protocol::kMaxPayloadLength;

void Check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool SameResult(const CutResult& a, const CutResult& b) {
    if (a.kind != b.kind || a.error != b.error || a.frame != b.frame) {
        return false;
    }
    // The proxy's refusal quotes whatever had arrived, which depends on how the reads fell.
    return a.error == CutError::kProxyRefused || a.errorText == b.errorText;
}

// An HTTP "200" reply that ends with its first blank line.
bool IsWholeProxyAcceptance(std::string_view reply) {
    if (reply.size() < 12 || reply.substr(9, 3) != "200") {
        return false;
    }
    for (std::size_t i = 0; i < 5; ++i) {
        if (std::tolower(static_cast<unsigned char>(reply[i])) != "http/"[i]) {
            return false;
        }
    }
    const std::size_t firstBlank = std::min(reply.find("\n\n"), reply.find("\n\r\n"));
    if (firstBlank == std::string_view::npos) {
        return false;
    }
    const std::size_t blankLength = reply.substr(firstBlank, 2) == "\n\n" ? 2 : 3;
    return firstBlank + blankLength == reply.size();
}

struct Run {
    std::vector<CutResult> results;
};

// Drains the cutter, checking each result against the stream it came from.
void Drain(FrameCutter& cutter, std::string_view stream, std::size_t& consumed, Run& run) {
    const std::size_t bound = std::max<std::size_t>(kHeaderLength + cutter.MaxPayloadLength(),
                                                    FrameCutter::kMaxProxyReplyLength);
    for (;;) {
        const std::size_t before = cutter.BufferedBytes();
        CutResult result = cutter.Next();
        if (result.kind == CutResult::Kind::kNeedMore) {
            Check(cutter.BufferedBytes() == before);
            Check(cutter.Failed() || before < bound);
            return;
        }
        if (result.kind == CutResult::Kind::kFrame) {
            Check(result.frame.payload.size() <= cutter.MaxPayloadLength());
            Check(result.frame.code.cmd1 >= 0 && result.frame.code.cmd2 >= 0);
            const std::string wire = EncodeFrame(result.frame.code, result.frame.payload);
            Check(stream.substr(consumed, wire.size()) == wire);
            Check(before - cutter.BufferedBytes() == wire.size());
            consumed += wire.size();
        } else if (result.kind == CutResult::Kind::kTunnelUp) {
            Check(!cutter.ProxyMode());
            Check(before > cutter.BufferedBytes());
            const std::size_t replyLength = before - cutter.BufferedBytes();
            Check(IsWholeProxyAcceptance(stream.substr(consumed, replyLength)));
            consumed += replyLength;
        } else {
            Check(cutter.Failed() && cutter.BufferedBytes() == 0 && !result.errorText.empty());
        }
        run.results.push_back(std::move(result));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    // First byte: proxy mode and the payload limit; second: how the second run splits its reads.
    const bool proxyMode = (data[0] & 1) != 0;
    constexpr std::uint32_t kLimits[] = {kMaxPayloadLength, 0, 3, 300};
    const std::uint32_t limit = kLimits[(data[0] >> 1) & 3];
    std::uint32_t seed = data[1] | 1u;
    const std::string_view stream(reinterpret_cast<const char*>(data + 2), size - 2);

    Run whole;
    {
        FrameCutter cutter(limit);
        cutter.SetProxyMode(proxyMode);
        cutter.Append(stream);
        std::size_t consumed = 0;
        Drain(cutter, stream, consumed, whole);
    }

    Run pieces;
    {
        FrameCutter cutter(limit);
        cutter.SetProxyMode(proxyMode);
        std::size_t consumed = 0;
        for (std::size_t pos = 0; pos < stream.size();) {
            seed = seed * 1103515245u + 12345u;
            const std::size_t read =
                std::min<std::size_t>(1 + (seed >> 16) % 23, stream.size() - pos);
            cutter.Append(stream.substr(pos, read));
            pos += read;
            Drain(cutter, stream, consumed, pieces);
        }
    }

    Check(whole.results.size() == pieces.results.size());
    for (std::size_t i = 0; i < whole.results.size(); ++i) {
        Check(SameResult(whole.results[i], pieces.results[i]));
    }
    return 0;
}
