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
    // An info line caused by what a client sent (a refusal, a dropped frame), written only while
    // that client's address group stays within its log budget (see LogThrottle), so that a client
    // cannot make the server write without bound.
    static void infoFrom(const std::string& addressGroup, std::string_view line);

    // Bytes from the network shown safely in a log line: control characters and bytes above 126
    // become \xNN, and anything beyond `limit` bytes is cut with "...".
    static std::string quoted(std::string_view bytes, std::size_t limit = 40);

    // Silences info lines (warnings still print); for tools that only want errors.
    static void setQuiet(bool quiet);
};

}  // namespace tavren::server
