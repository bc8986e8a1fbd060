#pragma once

#include <cstddef>

namespace tavren::server {

// The process's limit of open files, which bounds the connections it can hold. Distributions
// start programs with a soft limit of 1024 however many the system allows, so the server raises
// it at start: to `wanted` when it may (root may also raise the hard limit up to the kernel's
// nr_open), else as far as the hard limit goes.
class OpenFileLimit {
  public:
    // Returns the soft limit in force afterwards.
    static std::size_t raiseTo(std::size_t wanted);
    static std::size_t current();
};

}  // namespace tavren::server
