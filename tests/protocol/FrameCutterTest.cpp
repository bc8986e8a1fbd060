#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/protocol/Codecs.h"
#include "core/protocol/FrameCutter.h"

namespace tavren::protocol {
namespace {

using Kind = CutResult::Kind;

// Appends each chunk and drains the cutter after it, the way a socket handler does.
std::vector<CutResult> Feed(FrameCutter& cutter, const std::vector<std::string>& chunks) {
    std::vector<CutResult> results;
    for (const std::string& chunk : chunks) {
        cutter.Append(chunk);
        for (CutResult result = cutter.Next(); result.kind != Kind::kNeedMore;
             result = cutter.Next()) {
            results.push_back(result);
        }
    }
    return results;
}

std::vector<Frame> FramesOf(const std::vector<CutResult>& results) {
    std::vector<Frame> frames;
    for (const CutResult& result : results) {
        EXPECT_EQ(result.kind, Kind::kFrame) << result.errorText;
        frames.push_back(result.frame);
    }
    return frames;
}

std::string Header(std::uint32_t length, int cmd1, int cmd2) {
    return std::string("*\x14") + EncodeLength32(length) + EncodeWord16(cmd1) + EncodeWord16(cmd2);
}

const std::vector<Frame> kConversation = {
    {{1, 4}, "Welcome to Tavren"},
    {{1, 10}, ""},
    {{2, 7}, "General:hello: there"},
    {{2, 8}, std::string(300, 'p')},
};

std::string Wire(const std::vector<Frame>& frames) {
    std::string wire;
    for (const Frame& frame : frames) {
        wire += EncodeFrame(frame.code, frame.payload);
    }
    return wire;
}

TEST(FrameCutterTest, DeliversEveryFrameOnceInOrderHoweverTheStreamIsSplit) {
    const std::string wire = Wire(kConversation);
    {
        FrameCutter cutter;
        EXPECT_EQ(FramesOf(Feed(cutter, {wire})), kConversation);
        EXPECT_EQ(cutter.BufferedBytes(), 0u);
    }
    for (std::size_t split = 1; split < wire.size(); ++split) {
        FrameCutter cutter;
        EXPECT_EQ(FramesOf(Feed(cutter, {wire.substr(0, split), wire.substr(split)})),
                  kConversation)
            << "split at " << split;
    }
    {
        FrameCutter cutter;
        std::vector<std::string> bytes;
        for (const char byte : wire) {
            bytes.emplace_back(1, byte);
        }
        EXPECT_EQ(FramesOf(Feed(cutter, bytes)), kConversation);
    }
}

TEST(FrameCutterTest, GluedFramesComeOutTogetherAndAPartialTailWaits) {
    const std::string first = EncodeFrame({2, 5}, "General;alice;@bob");
    const std::string second = EncodeFrame({2, 13}, "carol:True");
    const std::string third = EncodeFrame({1, 3}, "Online: 12");

    FrameCutter cutter;
    cutter.Append(first + second + third.substr(0, 4));
    EXPECT_EQ(cutter.Next().frame, (Frame{{2, 5}, "General;alice;@bob"}));
    EXPECT_EQ(cutter.Next().frame, (Frame{{2, 13}, "carol:True"}));
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);  // asking again delivers nothing twice

    cutter.Append(third.substr(4) + first);
    EXPECT_EQ(cutter.Next().frame, (Frame{{1, 3}, "Online: 12"}));
    EXPECT_EQ(cutter.Next().frame.code, (CodePair{2, 5}));
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);

    FrameCutter three;
    EXPECT_EQ(FramesOf(Feed(three, {first + second + third})).size(), 3u);
}

TEST(FrameCutterTest, LargestAcceptedPayloadPassesAndOneMoreIsRefused) {
    FrameCutter cutter;
    const std::string payload(kMaxPayloadLength, 'x');
    const std::string frame = EncodeFrame({1, 15}, payload);
    cutter.Append(frame.substr(0, kHeaderLength + 100));
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);
    cutter.Append(frame.substr(kHeaderLength + 100));
    EXPECT_EQ(cutter.Next().frame.payload.size(), kMaxPayloadLength);

    FrameCutter strict(64);
    EXPECT_EQ(FramesOf(Feed(strict, {EncodeFrame({2, 7}, std::string(64, 'a'))})).size(), 1u);
    EXPECT_EQ(Feed(strict, {Header(65, 2, 7)}).at(0).error, CutError::kLengthTooLarge);
    EXPECT_EQ(FrameCutter(0xFFFFFFFF).MaxPayloadLength(), kMaxPayloadLength);
}

TEST(FrameCutterTest, HostileHeadersAreRefusedBeforeThePayloadArrives) {
    struct Case {
        std::string bytes;
        CutError error;
    };
    const std::vector<Case> cases = {
        {Header(kMaxPayloadLength + 1, 2, 7), CutError::kLengthTooLarge},
        {Header(2147483638u, 2, 7), CutError::kLengthTooLarge},
        {Header(0xFFFFFFFFu, 2, 7), CutError::kLengthTooLarge},
        {Header(3, 32768, 7), CutError::kCodeOutOfRange},
        {Header(3, 2, 0xFFFF), CutError::kCodeOutOfRange},
        {"#\x14", CutError::kBadLead},
        {"HTTP/1.0 200 OK\r\n\r\n", CutError::kBadLead},  // proxy mode is off
        {"*\x15", CutError::kBadTag},
        {EncodeFrame({2, 7}, "x") + std::string("\0\x14", 2), CutError::kBadLead},
    };
    for (const Case& hostile : cases) {
        FrameCutter cutter;
        const std::vector<CutResult> results = Feed(cutter, {hostile.bytes});
        ASSERT_FALSE(results.empty()) << hostile.bytes;
        const CutResult& last = results.back();
        EXPECT_EQ(last.kind, Kind::kError);
        EXPECT_EQ(last.error, hostile.error);
        EXPECT_FALSE(last.errorText.empty());
        EXPECT_TRUE(cutter.Failed());

        // A failed cutter stays quiet and keeps nothing, whatever else arrives.
        cutter.Append(std::string(4096, '*'));
        EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);
        EXPECT_EQ(cutter.BufferedBytes(), 0u);

        cutter.Reset();
        EXPECT_EQ(FramesOf(Feed(cutter, {EncodeFrame({1, 10}, "")})).size(), 1u);
    }
}

TEST(FrameCutterTest, RefusalNamesTheOffendingValue) {
    FrameCutter cutter;
    cutter.Append(Header(2147483638u, 2, 7));
    EXPECT_EQ(cutter.Next().errorText,
              "Frame refused: payload length 2147483638 is above the largest accepted 1048576.");
}

const std::string kTunnelReply = "HTTP/1.0 200 Connection established\r\nProxy-agent: x\r\n\r\n";

TEST(FrameCutterTest, ProxyAcceptanceIsConsumedAndTheNextFrameIsCut) {
    const std::vector<std::string> replies = {
        kTunnelReply,
        "http/1.1 200 OK\n\n",
        "Http/1.0 200 Connection established\n\r\n",
    };
    const std::string frames = Wire(kConversation);
    for (const std::string& reply : replies) {
        const std::string wire = reply + frames;
        for (std::size_t split = 1; split <= wire.size(); ++split) {
            FrameCutter cutter;
            cutter.SetProxyMode(true);
            std::vector<CutResult> results =
                Feed(cutter, {wire.substr(0, split), wire.substr(split)});
            ASSERT_FALSE(results.empty());
            EXPECT_EQ(results.front().kind, Kind::kTunnelUp) << reply << " split " << split;
            results.erase(results.begin());
            EXPECT_EQ(FramesOf(results), kConversation) << reply << " split " << split;
            EXPECT_FALSE(cutter.ProxyMode());
        }
    }
}

TEST(FrameCutterTest, ProxyRefusalIsReportedWithTheProxysText) {
    const std::string reply = "HTTP/1.0 403 Forbidden\r\n\r\n";
    FrameCutter cutter;
    cutter.SetProxyMode(true);
    cutter.Append(reply.substr(0, 11));  // longer than 10, but the status is not all there yet
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);
    cutter.Append(reply.substr(11));
    const CutResult result = cutter.Next();
    EXPECT_EQ(result.kind, Kind::kError);
    EXPECT_EQ(result.error, CutError::kProxyRefused);
    EXPECT_EQ(result.errorText, "Proxy Connections error!\r\n -> Proxy Host Message: " + reply);
}

TEST(FrameCutterTest, ProxyStatusMustStandOnTheFirstLine) {
    // "200" at characters 10-12 but after the end of the header block: no tunnel was granted.
    FrameCutter cutter;
    cutter.SetProxyMode(true);
    cutter.Append("HTTP/\n\r\n 200 OK\n\n");
    EXPECT_EQ(cutter.Next().error, CutError::kProxyRefused);
}

TEST(FrameCutterTest, ProxyReplyWithoutEndIsRefusedOnceItOutgrowsTheLimit) {
    FrameCutter cutter;
    cutter.SetProxyMode(true);
    cutter.Append("HTTP/1.0 200 OK\r\nX: ");
    EXPECT_EQ(cutter.Next().kind, Kind::kNeedMore);
    cutter.Append(std::string(FrameCutter::kMaxProxyReplyLength, 'a'));
    EXPECT_EQ(cutter.Next().error, CutError::kProxyReplyTooLong);
}

TEST(FrameCutterTest, ProxyModeStillCutsServerFrames) {
    FrameCutter cutter;
    cutter.SetProxyMode(true);
    EXPECT_EQ(FramesOf(Feed(cutter, {Wire(kConversation)})), kConversation);
    EXPECT_EQ(Feed(cutter, {"GET / HTTP/1.0"}).at(0).error, CutError::kBadLead);
}

}  // namespace
}  // namespace tavren::protocol
