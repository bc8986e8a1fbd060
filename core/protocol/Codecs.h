#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The binary header fields of a frame. Every byte travels as one character of the string, so the
// strings here are byte strings, not text.
namespace tavren::protocol {

// Two bytes, high byte first: value / 256 and value % 256. Only the low 16 bits of the value are
// written, so a negative number comes out in two's complement.
std::string EncodeWord16(std::int32_t value);

// Four bytes, big-endian: EncodeWord16 of length / 65536 followed by EncodeWord16 of the rest.
// The fraction is cut off; the value is taken modulo 2^32, and NaN or an infinity write zero.
std::string EncodeLength32(double length);

// First byte * 256 + second byte, each read as 0..255. Bytes missing from a short input count as 0;
// bytes past the second are ignored.
std::int32_t DecodeWord16(std::string_view bytes);

// DecodeWord16 of bytes 1-2 * 65536 + DecodeWord16 of bytes 3-4: 0 .. 4,294,967,295.
double DecodeLength32(std::string_view bytes);

// The server sends a peer's IPv4 address as one 32-bit number; this shows it as "a.b.c.d", most
// significant byte first. Negative numbers (a signed sender) name the same address as their
// unsigned counterpart.
std::string NumberToDottedQuad(double number);

}  // namespace tavren::protocol
