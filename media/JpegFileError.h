#pragma once

#include <string>
#include <system_error>

namespace tavren {

// Raised by cJpeg::SaveFile when the file cannot be created or written. Kept apart from JpegError
// so that a caller can tell "the picture was wrong" from "the disk said no".
class JpegFileError : public std::system_error {
  public:
    JpegFileError(std::error_code code, const std::string& path)
        : std::system_error(code, "cannot write \"" + path + "\""), path_(path) {}

    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace tavren
