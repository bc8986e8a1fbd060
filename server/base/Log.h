#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

// The server logs one line per event to stderr, time-stamped. Logging is the operator's only view
// of refused logins and dropped clients, so every refusal and every drop writes a line.
class Log {
  public:
    static void info(std::string_view line);
    static void warn(std::string_view line);

    // Bytes from the network shown safely in a log line: control characters and bytes above 126
    // become \xNN, and anything beyond `limit` bytes is cut with "...".
    static std::string quoted(std::string_view bytes, std::size_t limit = 40);

    // Silences info lines (warnings still print); for tools that only want errors.
    static void setQuiet(bool quiet);
};

}  // namespace tavren::server
