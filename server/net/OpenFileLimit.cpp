#include "server/net/OpenFileLimit.h"

#include <sys/resource.h>

#include <algorithm>
#include <fstream>

namespace tavren::server {

namespace {

// The kernel's ceiling for any process's limit (Linux); unknown elsewhere.
rlim_t kernelCeiling() {
    std::ifstream file("/proc/sys/fs/nr_open");
    unsigned long long value = 0;
    if (file >> value && value > 0) {
        return static_cast<rlim_t>(value);
    }
    return RLIM_INFINITY;
}

}  // namespace

std::size_t OpenFileLimit::current() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return 1024;
    }
    return limit.rlim_cur == RLIM_INFINITY ? std::size_t{1} << 20
                                           : static_cast<std::size_t>(limit.rlim_cur);
}

std::size_t OpenFileLimit::raiseTo(std::size_t wanted) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return current();
    }
    const rlim_t target = std::min(static_cast<rlim_t>(wanted), kernelCeiling());
    if (limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur >= target) {
        return current();
    }
    // First with a raised hard limit, which only a privileged process may do; then within it.
    rlimit raised{target, std::max(limit.rlim_max, target)};
    if (limit.rlim_max == RLIM_INFINITY) {
        raised.rlim_max = RLIM_INFINITY;
    }
    if (setrlimit(RLIMIT_NOFILE, &raised) != 0) {
        rlimit within{std::min(target, limit.rlim_max), limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &within);
    }
    return current();
}

}  // namespace tavren::server
