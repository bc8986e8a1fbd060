#include <gtest/gtest.h>

#include <string>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Codecs.h"
#include "core/protocol/Frame.h"

namespace tavren::protocol {
namespace {

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes += static_cast<char>(value);
    }
    return bytes;
}

TEST(FrameTest, RoomCommandFrameMatchesTheWireBytes) {
    const std::string frame = EncodeFrame(client_to_server::kRoomLine, "/ipbans:General");
    EXPECT_EQ(frame,
              Bytes({0x2A, 0x14, 0x00, 0x00, 0x00, 0x0F, 0x00, 0x02, 0x00, 0x07, 0x2F, 0x69, 0x70,
                     0x62, 0x61, 0x6E, 0x73, 0x3A, 0x47, 0x65, 0x6E, 0x65, 0x72, 0x61, 0x6C}));
    EXPECT_EQ(ParseFrame(frame), (Frame{{2, 7}, "/ipbans:General"}));
}

TEST(FrameTest, EmptyPayloadIsTheBareHeader) {
    const std::string frame = EncodeFrame({1, 10}, "");
    EXPECT_EQ(frame, Bytes({0x2A, 0x14, 0, 0, 0, 0, 0x00, 0x01, 0x00, 0x0A}));
    EXPECT_EQ(ParseFrame(frame), (Frame{{1, 10}, ""}));
}

TEST(FrameTest, LengthFieldIsBigEndianAcrossWordBoundaries) {
    EXPECT_EQ(EncodeLength32(300), Bytes({0, 0, 0x01, 0x2C}));
    EXPECT_EQ(EncodeLength32(65536), Bytes({0, 0x01, 0, 0}));
    EXPECT_EQ(EncodeLength32(65535), Bytes({0, 0, 0xFF, 0xFF}));
    EXPECT_EQ(EncodeLength32(4294967295.0), Bytes({0xFF, 0xFF, 0xFF, 0xFF}));

    const std::string big(65536, 'x');
    EXPECT_EQ(EncodeFrame({2, 8}, big).substr(2, 4), Bytes({0, 0x01, 0, 0}));
    EXPECT_EQ(EncodeFrame({2, 8}, std::string(300, 'y')).substr(2, 4), Bytes({0, 0, 0x01, 0x2C}));
    EXPECT_EQ(ParseFrame(EncodeFrame({2, 8}, big))->payload, big);
}

TEST(FrameTest, CodecsReadBytesAsUnsignedAndRoundTrip) {
    for (const int value : {0, 1, 127, 128, 255, 256, 0x7FFF, 0x8000, 0xFFFF}) {
        EXPECT_EQ(DecodeWord16(EncodeWord16(value)), value) << value;
    }
    for (const double value : {0.0, 300.0, 65535.0, 65536.0, 2147483638.0, 4294967295.0}) {
        EXPECT_EQ(DecodeLength32(EncodeLength32(value)), value) << value;
    }
    EXPECT_EQ(DecodeWord16(Bytes({0xFF, 0x80})), 0xFF80);
    // Out-of-range inputs fold into the field instead of failing.
    EXPECT_EQ(EncodeWord16(-1), Bytes({0xFF, 0xFF}));
    EXPECT_EQ(EncodeLength32(300.9), Bytes({0, 0, 0x01, 0x2C}));
    EXPECT_EQ(EncodeLength32(-1), Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
    // Short inputs never read past their end.
    EXPECT_EQ(DecodeWord16(""), 0);
    EXPECT_EQ(DecodeLength32(Bytes({0x01})), 256.0 * 65536);
}

TEST(FrameTest, DottedQuadShowsMostSignificantByteFirst) {
    EXPECT_EQ(NumberToDottedQuad(3232235777.0), "192.168.1.1");
    EXPECT_EQ(NumberToDottedQuad(0), "0.0.0.0");
    EXPECT_EQ(NumberToDottedQuad(4294967295.0), "255.255.255.255");
    // A sender that holds the address as a signed number.
    EXPECT_EQ(NumberToDottedQuad(-1062731519.0), "192.168.1.1");
}

TEST(FrameTest, ParseRefusesMalformedFrames) {
    const std::string good = EncodeFrame({2, 7}, "abc");
    EXPECT_FALSE(ParseFrame(good.substr(0, 9)));                            // shorter than a header
    EXPECT_FALSE(ParseFrame(good.substr(0, 12)));                           // payload cut short
    EXPECT_FALSE(ParseFrame(good + "d"));                                   // more than announced
    EXPECT_FALSE(ParseFrame("#" + good.substr(1)));                         // lead byte
    EXPECT_FALSE(ParseFrame(good.substr(0, 1) + "\x15" + good.substr(2)));  // tag byte
    std::string highCode = good;
    highCode[kCmd2Offset] = '\x80';
    EXPECT_FALSE(ParseFrame(highCode));
    highCode[kCmd2Offset] = '\x7F';
    highCode[kCmd2Offset + 1] = '\xFF';
    EXPECT_EQ(ParseFrame(highCode)->code, (CodePair{2, 32767}));
}

}  // namespace
}  // namespace tavren::protocol
