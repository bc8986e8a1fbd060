#include "server/app/DataFolder.h"

#include <cstdlib>

namespace tavren::server {

namespace {

std::filesystem::path fromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value ? std::filesystem::path(value) : std::filesystem::path{};
}

}  // namespace

std::filesystem::path DataFolder::defaultDatabasePath() {
    constexpr const char* kFileName = "tavrend.db";
    if (auto root = fromEnvironment("TAVREN_HOME"); !root.empty()) {
        return root / kFileName;
    }
    if (auto data = fromEnvironment("XDG_DATA_HOME"); !data.empty()) {
        return data / "tavren" / kFileName;
    }
    if (auto home = fromEnvironment("HOME"); !home.empty()) {
        return home / ".local" / "share" / "tavren" / kFileName;
    }
    return kFileName;
}

}  // namespace tavren::server
