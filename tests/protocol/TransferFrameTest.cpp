#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/protocol/TransferFrame.h"

namespace tavren::protocol {
namespace {

using Kind = TransferFrameReader::Event::Kind;
using Error = TransferFrameReader::Error;

std::string WholeFrame(std::string_view name, std::string_view data) {
    return *EncodeTransferStart(name, data.size()) + std::string(data) +
           std::string(kTransferDataEnd);
}

// What a reader makes of a stream handed over in pieces of the given sizes (cycled).
struct Received {
    std::vector<std::string> names;
    std::vector<std::string> files;
    int completed = 0;
    Error error = Error::kNone;
};

Received ReadInPieces(std::string_view stream, const std::vector<std::size_t>& pieces) {
    TransferFrameReader reader;
    Received got;
    std::size_t at = 0;
    for (std::size_t i = 0; at < stream.size(); ++i) {
        std::string_view input = stream.substr(at, pieces[i % pieces.size()]);
        at += input.size();
        for (;;) {
            const auto event = reader.Next(input);
            if (event.kind == Kind::kNeedMore) {
                EXPECT_TRUE(input.empty());
                break;
            }
            if (event.kind == Kind::kHeader) {
                got.names.push_back(reader.Name());
                got.files.emplace_back();
            } else if (event.kind == Kind::kData) {
                got.files.back() += event.data;
            } else if (event.kind == Kind::kComplete) {
                ++got.completed;
            } else {
                got.error = event.error;
                return got;
            }
        }
    }
    return got;
}

TEST(TransferFrameTest, TheStartIsTheFrameCharactersTheLengthAndTheHeaderByteForByte) {
    const std::string start = *EncodeTransferStart("a.txt", 2048);
    // header "<name>a.txt</name><size>2048</size><data>" is 41 bytes; + 2048 + 7 = 2096.
    EXPECT_EQ(start, std::string("*\x14\x00\x00\x08\x30", 6) +
                         "<name>a.txt</name><size>2048</size><data>");
    EXPECT_EQ(TransferLength("a.txt", 2048), 2096u);
    // The name starts at the thirteenth character, as the receiver reads it.
    EXPECT_EQ(start.substr(12, 5), "a.txt");
}

TEST(TransferFrameTest, TheLargestFileIsTheOneWhoseLengthStillFitsThirtyTwoBits) {
    for (const std::string& name : {std::string("a.b"), std::string(300, 'n') + ".zip"}) {
        const std::uint64_t largest = MaxTransferSize(name);
        ASSERT_TRUE(EncodeTransferStart(name, largest).has_value()) << name.size();
        EXPECT_EQ(TransferLength(name, largest), 0xFFFFFFFFu);
        EXPECT_FALSE(EncodeTransferStart(name, largest + 1).has_value());
    }
    EXPECT_EQ(MaxTransferSize("a.b"), 0xFFFFFFFFull - 7 - 35 - 10);
    EXPECT_FALSE(EncodeTransferStart("x.bin", std::uint64_t{1} << 33).has_value());
}

// However the stream is cut (byte by byte, in odd pieces, all at once), every frame comes out
// once with its name and exactly its bytes, and frames that follow each other on one link are
// told apart, even when a file holds what looks like a frame's markers.
TEST(TransferFrameTest, FramesComeOutWholeHoweverTheStreamIsCut) {
    std::mt19937 random(7);
    std::string binary(5000, '\0');
    for (char& byte : binary) {
        byte = static_cast<char>(random() & 0xFF);
    }
    const std::string tricky = "</data><name>x</name>*\x14";
    const std::string stream = WholeFrame("one.bin", binary) + WholeFrame("two.txt", tricky) +
                               WholeFrame("archive.tar.gz", std::string(2048, 'z'));
    for (const std::vector<std::size_t>& pieces :
         std::vector<std::vector<std::size_t>>{{1}, {3, 7, 2048}, {13}, {stream.size()}}) {
        const Received got = ReadInPieces(stream, pieces);
        ASSERT_EQ(got.error, Error::kNone);
        EXPECT_EQ(got.completed, 3);
        EXPECT_EQ(got.names, (std::vector<std::string>{"one.bin", "two.txt", "archive.tar.gz"}));
        ASSERT_EQ(got.files.size(), 3u);
        EXPECT_EQ(got.files[0], binary);
        EXPECT_EQ(got.files[1], tricky);
        EXPECT_EQ(got.files[2], std::string(2048, 'z'));
    }
}

TEST(TransferFrameTest, AnEmptyFileAndANameWithMarkupInsideAreStillOneFrameEach) {
    const Received got =
        ReadInPieces(WholeFrame("", "") + WholeFrame("a<size>1</size>.txt", "q"), {5});
    ASSERT_EQ(got.error, Error::kNone);
    EXPECT_EQ(got.completed, 2);
    EXPECT_EQ(got.names, (std::vector<std::string>{"", "a<size>1</size>.txt"}));
    EXPECT_EQ(got.files, (std::vector<std::string>{"", "q"}));
}

// A frame that cannot be trusted stops the reader before a single file byte is handed out, and
// it stays stopped.
TEST(TransferFrameTest, FramesThatLieAreRefusedBeforeAnyFileByteComesOut) {
    std::string longer = WholeFrame("a.txt", "hello");
    longer[5] = static_cast<char>(longer[5] + 1);  // the length says one byte more than the size
    std::string shorter = WholeFrame("a.txt", "hello");
    shorter[5] = static_cast<char>(shorter[5] - 1);
    std::string badSize = WholeFrame("a.txt", "hello");
    badSize.replace(badSize.find("<size>5"), 7, "<size>x");
    std::string hugeSize = *EncodeTransferStart("a.txt", 5);
    hugeSize.replace(hugeSize.find("<size>5"), 7, "<size>" + std::string(25, '9'));
    const struct {
        std::string stream;
        Error error;
    } cases[] = {
        {longer, Error::kLengthMismatch},
        {shorter, Error::kLengthMismatch},
        {"A" + WholeFrame("a.txt", "x").substr(1), Error::kBadLead},
        {"*\x15" + WholeFrame("a.txt", "x").substr(2), Error::kBadTag},
        {badSize, Error::kBadHeader},
        {hugeSize, Error::kBadHeader},
        {std::string("*\x14\x00\x00\x00\x30", 6) + "<nome>", Error::kBadHeader},
        {std::string("*\x14\x7f\xff\xff\xff", 6) + "<name>" + std::string(5000, 'n'),
         Error::kHeaderTooLong},
        {WholeFrame("a.txt", "hello").replace(6 + 38 + 5, 7, "</dat>!"), Error::kBadTrailer},
    };
    for (const auto& each : cases) {
        for (const std::size_t piece : {std::size_t{1}, each.stream.size()}) {
            const Received got = ReadInPieces(each.stream, {piece});
            EXPECT_EQ(got.error, each.error) << TransferFrameReader::ErrorText(each.error);
            if (each.error != Error::kBadTrailer) {
                EXPECT_TRUE(got.files.empty() || got.files.back().empty());
            }
        }
    }
    TransferFrameReader reader;
    std::string_view bad = "x";
    EXPECT_EQ(reader.Next(bad).kind, Kind::kError);
    const std::string good = WholeFrame("a.txt", "x");
    std::string_view rest = good;
    EXPECT_EQ(reader.Next(rest).kind, Kind::kNeedMore);
    EXPECT_TRUE(reader.Failed());
    reader.Reset();
    rest = good;
    EXPECT_EQ(reader.Next(rest).kind, Kind::kHeader);
}

TEST(TransferFrameTest, TheReaderCountsTheFrameAsItGoes) {
    const std::string frame = WholeFrame("a.txt", std::string(100, 'd'));
    TransferFrameReader reader;
    std::string_view input = std::string_view(frame).substr(0, 60);
    EXPECT_EQ(reader.Next(input).kind, Kind::kHeader);
    EXPECT_TRUE(reader.InFrame());
    EXPECT_EQ(reader.FrameBytesTotal(), frame.size());
    EXPECT_EQ(reader.Next(input).kind, Kind::kData);
    EXPECT_EQ(reader.FrameBytesRead(), 60u);
    EXPECT_EQ(reader.Remaining(), 100u - (60u - 46u));
    input = std::string_view(frame).substr(60);
    EXPECT_EQ(reader.Next(input).kind, Kind::kData);
    EXPECT_EQ(reader.Next(input).kind, Kind::kComplete);
    EXPECT_FALSE(reader.InFrame());
}

}  // namespace
}  // namespace tavren::protocol
