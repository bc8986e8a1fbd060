#pragma once

#include <stdexcept>

namespace tavren::server {

// The storage could not do what was asked (file unreadable, disk full, corrupt database).
class StorageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavren::server
