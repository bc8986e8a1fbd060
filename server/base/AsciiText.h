#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

// Text helpers that touch ASCII only. Names of members and channels are compared without regard
// to case the way SQLite's NOCASE compares them, folding A-Z and nothing else, so that the
// database and the server's own maps always agree on which two names are the same.
class AsciiText {
  public:
    static std::string lower(std::string_view text);
    static bool equalNoCase(std::string_view a, std::string_view b);
    // Orders as the lower-case forms would, without making them.
    static bool lessNoCase(std::string_view a, std::string_view b);
    // Without the blanks (spaces) at either end.
    static std::string_view trimBlanks(std::string_view text);
};

}  // namespace tavren::server
