#pragma once

#include <string>
#include <string_view>

// Payload text is one byte per character in Windows-1252. The program works in UTF-8 and converts
// at the protocol boundary with these two functions, nowhere else.
namespace tavren::protocol {

// Every byte has a character: the five bytes Windows-1252 leaves undefined (0x81, 0x8D, 0x8F,
// 0x90, 0x9D) become the C1 control characters of the same number, so any byte string survives
// Cp1252ToUtf8 followed by Utf8ToCp1252 unchanged, separators and header bytes included.
std::string Cp1252ToUtf8(std::string_view bytes);

// Characters that Windows-1252 cannot hold, and bytes that are not valid UTF-8 (one "?" per
// offending byte), become "?".
std::string Utf8ToCp1252(std::string_view text);

}  // namespace tavren::protocol
