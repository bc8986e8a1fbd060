#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The transfer frame of the direct peer connection: one file as one frame without command codes.
//
//   "*", the tag byte, a 4-byte big-endian length, then the body
//   "<name>" name "</name><size>" size in decimal "</size><data>" the file's bytes "</data>"
//
// The length counts the body: the header text from "<name>" to "<data>", the file's bytes and the
// seven bytes of "</data>". A file is far larger than any frame the frame cutter would buffer, so
// it is written and read as a stream: the sender writes the start, then the file in blocks, then
// the end; the reader hands the file's bytes on as they arrive and keeps only the header.
namespace tavren::protocol {

// "*", the tag byte and the length field.
inline constexpr std::size_t kTransferPrefixLength = 6;
// The sender reads and writes the file in blocks of this many bytes.
inline constexpr std::size_t kTransferBlockSize = 2048;
inline constexpr std::string_view kTransferDataEnd = "</data>";
// The longest header (from "<name>" through "<data>") a reader takes before it gives up on the
// stream. Real names are short; the bound is wide enough that an overlong name still reaches the
// receiver's name rules and is refused there, with the stream intact.
inline constexpr std::size_t kMaxTransferHeaderLength = 4096;

// "<name>" + name + "</name><size>" + size + "</size><data>".
std::string TransferHeader(std::string_view name, std::uint64_t size);
// The value of the length field for this name and size: header + size + 7.
std::uint64_t TransferLength(std::string_view name, std::uint64_t size);
// The largest file called `name` whose length still fits the 32-bit field; 0 when none does.
std::uint64_t MaxTransferSize(std::string_view name);
// What goes on the wire before the file's bytes: "*", the tag, the length field, the header.
// Nothing when the length would not fit the 32-bit field.
std::optional<std::string> EncodeTransferStart(std::string_view name, std::uint64_t size);

// Reads transfer frames from a byte stream, one after the other, however the stream is split.
//
// Call Next() with the bytes received; it takes what it needs from the front of `input` and
// reports one event. Keep calling it until it answers kNeedMore (then `input` is empty). File
// bytes come out as kData views into `input` itself, so nothing of the file is copied or kept
// here; only the header is buffered, and never more than kMaxTransferHeaderLength bytes of it.
//
// Everything about a frame is checked as soon as its bytes are in: the lead and tag bytes, the
// header's layout, and that the length field agrees with the size field (before any file byte is
// handed out). After an error the reader stays failed until Reset(): the stream has lost its
// frame boundary and cannot be trusted again.
class TransferFrameReader {
  public:
    enum class Error {
        kNone,
        kBadLead,         // the frame does not start with "*"
        kBadTag,          // the second byte is not the tag byte
        kHeaderTooLong,   // no "<data>" within kMaxTransferHeaderLength bytes
        kBadHeader,       // not "<name>..</name><size>digits</size><data>"
        kLengthMismatch,  // the length field disagrees with the header and the size field
        kBadTrailer,      // the file's bytes are not followed by "</data>"
    };

    struct Event {
        enum class Kind {
            kNeedMore,  // every byte given was taken; wait for more
            kHeader,    // Name() and Size() of a new frame are known
            kData,      // `data` holds the next bytes of the file
            kComplete,  // the frame ended with "</data>"; the next byte starts a new frame
            kError,     // `error` says why; the stream is unusable
        };
        Kind kind = Kind::kNeedMore;
        std::string_view data;
        Error error = Error::kNone;
    };

    Event Next(std::string_view& input);

    // The name's bytes as sent, once kHeader has been reported.
    const std::string& Name() const { return name_; }
    std::uint64_t Size() const { return size_; }
    // File bytes of the current frame not handed out yet.
    std::uint64_t Remaining() const { return remaining_; }
    // Bytes of the current frame taken so far, prefix and header included.
    std::uint64_t FrameBytesRead() const { return frameBytesRead_; }
    // The whole frame's length on the wire (prefix included), once its length field is in.
    std::uint64_t FrameBytesTotal() const { return kTransferPrefixLength + length_; }
    // Between the first byte of a frame and its "</data>".
    bool InFrame() const { return stage_ != Stage::kPrefix || !prefix_.empty(); }
    bool Failed() const { return stage_ == Stage::kFailed; }
    void Reset();

    static std::string_view ErrorText(Error error);

  private:
    enum class Stage { kPrefix, kHeader, kData, kTrailer, kFailed };

    Event ReadPrefix(std::string_view& input);
    Event ReadHeader(std::string_view& input);
    Event ReadTrailer(std::string_view& input);
    Event Fail(Error error);
    void Take(std::string_view& input, std::size_t count);

    Stage stage_ = Stage::kPrefix;
    std::string prefix_;
    std::string header_;
    std::string trailer_;
    std::string name_;
    std::uint64_t length_ = 0;
    std::uint64_t size_ = 0;
    std::uint64_t remaining_ = 0;
    std::uint64_t frameBytesRead_ = 0;
};

}  // namespace tavren::protocol
