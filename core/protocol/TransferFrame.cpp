#include "core/protocol/TransferFrame.h"

#include <algorithm>
#include <limits>

#include "core/protocol/Codecs.h"
#include "core/protocol/Frame.h"

namespace tavren::protocol {

namespace {

constexpr std::string_view kNameOpen = "<name>";
constexpr std::string_view kNameClose = "</name>";
constexpr std::string_view kSizeOpen = "<size>";
constexpr std::string_view kSizeCloseDataOpen = "</size><data>";
constexpr std::uint64_t kLargestLength = std::numeric_limits<std::uint32_t>::max();
// More digits than any 64-bit number has.
constexpr std::size_t kMaxSizeDigits = 20;

std::size_t DigitCount(std::uint64_t value) {
    std::size_t digits = 1;
    while (value >= 10) {
        value /= 10;
        ++digits;
    }
    return digits;
}

// How far `text` from `at` agrees with `expected`: kMatch when all of it is there, kPartial when
// what is there agrees so far, kMismatch otherwise.
enum class Match { kMatch, kPartial, kMismatch };
Match MatchAt(std::string_view text, std::size_t at, std::string_view expected) {
    const std::string_view present = text.substr(std::min(at, text.size()), expected.size());
    if (present != expected.substr(0, present.size())) {
        return Match::kMismatch;
    }
    return present.size() == expected.size() ? Match::kMatch : Match::kPartial;
}

struct ParsedHeader {
    enum class Status { kIncomplete, kBad, kComplete } status = Status::kIncomplete;
    std::size_t end = 0;  // one past "<data>"
    std::string_view name;
    std::uint64_t size = 0;
};

ParsedHeader ParseHeader(std::string_view header) {
    using Status = ParsedHeader::Status;
    ParsedHeader parsed;
    switch (MatchAt(header, 0, kNameOpen)) {
        case Match::kMismatch:
            parsed.status = Status::kBad;
            return parsed;
        case Match::kPartial:
            return parsed;
        case Match::kMatch:
            break;
    }
    // The name is everything up to the first "</name>", whatever it holds.
    const std::size_t nameEnd = header.find(kNameClose, kNameOpen.size());
    if (nameEnd == std::string_view::npos) {
        return parsed;
    }
    std::size_t at = nameEnd + kNameClose.size();
    switch (MatchAt(header, at, kSizeOpen)) {
        case Match::kMismatch:
            parsed.status = Status::kBad;
            return parsed;
        case Match::kPartial:
            return parsed;
        case Match::kMatch:
            break;
    }
    at += kSizeOpen.size();
    const std::size_t digitsStart = at;
    std::uint64_t size = 0;
    while (at < header.size() && header[at] >= '0' && header[at] <= '9') {
        const auto digit = static_cast<std::uint64_t>(header[at] - '0');
        if (at - digitsStart >= kMaxSizeDigits ||
            size > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
            parsed.status = Status::kBad;
            return parsed;
        }
        size = size * 10 + digit;
        ++at;
    }
    if (at == header.size()) {
        return parsed;
    }
    if (at == digitsStart) {
        parsed.status = Status::kBad;
        return parsed;
    }
    switch (MatchAt(header, at, kSizeCloseDataOpen)) {
        case Match::kMismatch:
            parsed.status = Status::kBad;
            return parsed;
        case Match::kPartial:
            return parsed;
        case Match::kMatch:
            break;
    }
    parsed.status = Status::kComplete;
    parsed.end = at + kSizeCloseDataOpen.size();
    parsed.name = header.substr(kNameOpen.size(), nameEnd - kNameOpen.size());
    parsed.size = size;
    return parsed;
}

}  // namespace

std::string TransferHeader(std::string_view name, std::uint64_t size) {
    std::string header;
    header.reserve(name.size() + 32 + kMaxSizeDigits);
    header += kNameOpen;
    header += name;
    header += kNameClose;
    header += kSizeOpen;
    header += std::to_string(size);
    header += kSizeCloseDataOpen;
    return header;
}

std::uint64_t TransferLength(std::string_view name, std::uint64_t size) {
    const std::uint64_t fixed = kNameOpen.size() + kNameClose.size() + kSizeOpen.size() +
                                kSizeCloseDataOpen.size() + kTransferDataEnd.size();
    return fixed + name.size() + DigitCount(size) + size;
}

std::uint64_t MaxTransferSize(std::string_view name) {
    // The size's own digits count towards the length: the fewest digits that leave room for a
    // number of at most that many digits give the largest size.
    const std::uint64_t fixed = TransferLength(name, 0) - 1;
    for (std::size_t digits = 1; digits <= kMaxSizeDigits; ++digits) {
        if (fixed + digits > kLargestLength) {
            return 0;
        }
        const std::uint64_t candidate = kLargestLength - fixed - digits;
        if (DigitCount(candidate) <= digits) {
            return candidate;
        }
    }
    return 0;
}

std::optional<std::string> EncodeTransferStart(std::string_view name, std::uint64_t size) {
    const std::uint64_t length = TransferLength(name, size);
    if (size > kLargestLength || length > kLargestLength) {
        return std::nullopt;
    }
    std::string start;
    start += kFrameLead;
    start += static_cast<char>(ProtocolTag);
    start += EncodeLength32(static_cast<double>(length));
    start += TransferHeader(name, size);
    return start;
}

void TransferFrameReader::Reset() {
    stage_ = Stage::kPrefix;
    prefix_.clear();
    header_.clear();
    trailer_.clear();
    name_.clear();
    length_ = 0;
    size_ = 0;
    remaining_ = 0;
    frameBytesRead_ = 0;
}

void TransferFrameReader::Take(std::string_view& input, std::size_t count) {
    input.remove_prefix(count);
    frameBytesRead_ += count;
}

TransferFrameReader::Event TransferFrameReader::Fail(Error error) {
    stage_ = Stage::kFailed;
    Event event;
    event.kind = Event::Kind::kError;
    event.error = error;
    return event;
}

TransferFrameReader::Event TransferFrameReader::Next(std::string_view& input) {
    switch (stage_) {
        case Stage::kFailed:
            input = {};
            return {};
        case Stage::kPrefix:
            return ReadPrefix(input);
        case Stage::kHeader:
            return ReadHeader(input);
        case Stage::kData: {
            if (remaining_ == 0) {
                stage_ = Stage::kTrailer;
                return ReadTrailer(input);
            }
            if (input.empty()) {
                return {};
            }
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(remaining_, input.size()));
            Event event;
            event.kind = Event::Kind::kData;
            event.data = input.substr(0, count);
            remaining_ -= count;
            Take(input, count);
            if (remaining_ == 0) {
                stage_ = Stage::kTrailer;
            }
            return event;
        }
        case Stage::kTrailer:
            return ReadTrailer(input);
    }
    return {};
}

TransferFrameReader::Event TransferFrameReader::ReadPrefix(std::string_view& input) {
    if (prefix_.empty()) {
        frameBytesRead_ = 0;
    }
    const std::size_t count = std::min(kTransferPrefixLength - prefix_.size(), input.size());
    prefix_.append(input.substr(0, count));
    Take(input, count);
    if (!prefix_.empty() && prefix_[0] != kFrameLead) {
        return Fail(Error::kBadLead);
    }
    if (prefix_.size() > 1 && static_cast<unsigned char>(prefix_[1]) != ProtocolTag) {
        return Fail(Error::kBadTag);
    }
    if (prefix_.size() < kTransferPrefixLength) {
        return {};
    }
    length_ = static_cast<std::uint64_t>(DecodeLength32(std::string_view(prefix_).substr(2, 4)));
    stage_ = Stage::kHeader;
    return ReadHeader(input);
}

TransferFrameReader::Event TransferFrameReader::ReadHeader(std::string_view& input) {
    using Status = ParsedHeader::Status;
    const std::size_t before = header_.size();
    const std::size_t count = std::min(kMaxTransferHeaderLength - before, input.size());
    header_.append(input.substr(0, count));
    const ParsedHeader parsed = ParseHeader(header_);
    if (parsed.status == Status::kBad) {
        return Fail(Error::kBadHeader);
    }
    if (parsed.status == Status::kIncomplete) {
        Take(input, count);
        if (header_.size() >= kMaxTransferHeaderLength) {
            return Fail(Error::kHeaderTooLong);
        }
        return {};
    }
    // Only the header's own bytes are taken; what follows "<data>" is the file.
    Take(input, parsed.end - before);
    header_.resize(parsed.end);
    if (length_ != parsed.end + parsed.size + kTransferDataEnd.size()) {
        return Fail(Error::kLengthMismatch);
    }
    name_.assign(parsed.name);
    size_ = parsed.size;
    remaining_ = parsed.size;
    stage_ = Stage::kData;
    Event event;
    event.kind = Event::Kind::kHeader;
    return event;
}

TransferFrameReader::Event TransferFrameReader::ReadTrailer(std::string_view& input) {
    const std::size_t count = std::min(kTransferDataEnd.size() - trailer_.size(), input.size());
    trailer_.append(input.substr(0, count));
    Take(input, count);
    if (trailer_ != kTransferDataEnd.substr(0, trailer_.size())) {
        return Fail(Error::kBadTrailer);
    }
    if (trailer_.size() < kTransferDataEnd.size()) {
        return {};
    }
    // Ready for the next frame; the name and size stay readable until it starts.
    stage_ = Stage::kPrefix;
    prefix_.clear();
    header_.clear();
    trailer_.clear();
    Event event;
    event.kind = Event::Kind::kComplete;
    return event;
}

std::string_view TransferFrameReader::ErrorText(Error error) {
    switch (error) {
        case Error::kNone:
            return "no error";
        case Error::kBadLead:
            return "the transfer does not start with \"*\"";
        case Error::kBadTag:
            return "the transfer's tag byte is wrong";
        case Error::kHeaderTooLong:
            return "the transfer's header is too long";
        case Error::kBadHeader:
            return "the transfer's header is malformed";
        case Error::kLengthMismatch:
            return "the transfer's length disagrees with its size";
        case Error::kBadTrailer:
            return "the file's bytes are not followed by </data>";
    }
    return "unknown error";
}

}  // namespace tavren::protocol
