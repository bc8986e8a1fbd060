#pragma once

#include "server/rooms/ChannelStore.h"

namespace tavren::server {

class SqliteDatabase;

// Channels in the embedded SQLite database. As with accounts, the database itself keeps names
// unique without regard to case (NOCASE folds ASCII letters, as the server's own maps do).
class SqliteChannelStore : public ChannelStore {
  public:
    explicit SqliteChannelStore(SqliteDatabase& db) : db_(db) {}

    std::optional<Channel> findByName(std::string_view name) override;
    bool create(Channel& channel) override;
    void setTopic(std::int64_t channelId, const std::string& topic) override;
    void setPasswordHash(std::int64_t channelId, const std::string& passwordHash) override;
    void setLastUsed(std::int64_t channelId, std::int64_t when) override;
    std::size_t countHostedBy(std::int64_t accountId) override;
    std::size_t count() override;
    std::vector<Channel> list(std::size_t limit) override;
    std::vector<Channel> unusedSince(std::int64_t cutoff) override;
    void remove(std::int64_t channelId) override;
    void setOfficial(const std::vector<std::string>& names, std::int64_t now) override;

  private:
    SqliteDatabase& db_;
};

}  // namespace tavren::server
