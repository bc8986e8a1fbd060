#include "PlainCopy.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

namespace tavren::bench {

namespace {

constexpr std::size_t kChunk = 256 * 1024;

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written <= 0) {
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

double PlainCopy(const std::string& source, const std::string& target) {
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(listener, 1) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        ::close(listener);
        return -1;
    }
    bool received = false;
    std::thread receiver([&] {
        const int connection = ::accept(listener, nullptr, nullptr);
        const int out = ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        std::vector<char> buffer(kChunk);
        bool ok = connection >= 0 && out >= 0;
        while (ok) {
            const ssize_t got = ::read(connection, buffer.data(), buffer.size());
            if (got <= 0) {
                break;
            }
            ok = writeAll(out, buffer.data(), static_cast<std::size_t>(got));
        }
        received = ok;
        ::close(out);
        ::close(connection);
    });
    const auto start = std::chrono::steady_clock::now();
    const int sender = ::socket(AF_INET, SOCK_STREAM, 0);
    const int in = ::open(source.c_str(), O_RDONLY);
    bool sent =
        ::connect(sender, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0 && in >= 0;
    std::vector<char> buffer(kChunk);
    while (sent) {
        const ssize_t got = ::read(in, buffer.data(), buffer.size());
        if (got <= 0) {
            break;
        }
        sent = writeAll(sender, buffer.data(), static_cast<std::size_t>(got));
    }
    ::close(in);
    ::close(sender);
    receiver.join();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ::close(listener);
    return sent && received ? seconds : -1;
}

}  // namespace tavren::bench
