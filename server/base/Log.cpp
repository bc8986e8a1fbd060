#include "server/base/Log.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>

#include "server/base/LogThrottle.h"

namespace tavren::server {

namespace {

std::mutex logMutex;
std::atomic<bool> quietMode{false};

void write(std::string_view level, std::string_view line) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);

    const std::lock_guard lock(logMutex);
    std::fprintf(stderr, "%s.%03d %.*s %.*s\n", stamp, static_cast<int>(millis),
                 static_cast<int>(level.size()), level.data(), static_cast<int>(line.size()),
                 line.data());
    std::fflush(stderr);
}

}  // namespace

void Log::info(std::string_view line) {
    if (!quietMode) {
        write("info", line);
    }
}

void Log::infoFrom(const std::string& addressGroup, std::string_view line) {
    if (quietMode) {
        return;
    }
    // 20 lines at once, then one a second, per address group.
    static LogThrottle throttle(20, std::chrono::seconds(1));
    std::size_t leftOut = 0;
    {
        const std::lock_guard lock(logMutex);
        if (!throttle.allow(addressGroup, LogThrottle::Clock::now(), leftOut)) {
            return;
        }
    }
    if (leftOut == 0) {
        write("info", line);
    } else {
        write("info", std::string(line) + " (" + std::to_string(leftOut) + " more lines from " +
                          addressGroup + " left out)");
    }
}

void Log::warn(std::string_view line) {
    write("warn", line);
}

void Log::setQuiet(bool quiet) {
    quietMode = quiet;
}

std::string Log::quoted(std::string_view bytes, std::size_t limit) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text = "\"";
    for (std::size_t i = 0; i < bytes.size() && i < limit; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 32 || byte > 126 || byte == '"' || byte == '\\') {
            text += "\\x";
            text += kHex[byte >> 4];
            text += kHex[byte & 15];
        } else {
            text += static_cast<char>(byte);
        }
    }
    text += bytes.size() > limit ? "\"..." : "\"";
    return text;
}

}  // namespace tavren::server
