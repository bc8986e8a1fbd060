#pragma once

#include <string>

namespace tavren::bench {

// The peer: the same file copied over a loopback TCP connection by two threads with blocking
// reads and writes of 256 KiB, straight from file to socket and from socket to file. No framing,
// no event loop: as fast as the machine copies bytes through TCP.
// Returns the seconds from connect to the last byte written, or a negative number on failure.
double PlainCopy(const std::string& source, const std::string& target);

}  // namespace tavren::bench
