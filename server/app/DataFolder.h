#pragma once

#include <filesystem>

namespace tavren::server {

// Where the server keeps its database when none is named: under $TAVREN_HOME when set (the data
// root the client and the tests use), else in the per-user data folder
// ($XDG_DATA_HOME/tavren or ~/.local/share/tavren).
class DataFolder {
  public:
    static std::filesystem::path defaultDatabasePath();
};

}  // namespace tavren::server
