#pragma once

#include <stdexcept>

namespace tavren {

// What went wrong with a file that is not a usable binary PPM (P6) picture.
class PpmFormatError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavren
