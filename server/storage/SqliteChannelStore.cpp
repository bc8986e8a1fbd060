#include "server/storage/SqliteChannelStore.h"

#include <algorithm>
#include <cstdint>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

namespace {

constexpr const char* kColumns =
    "SELECT id, name, topic, host_id, official, created_at, last_used_at,"
    " (SELECT password_hash FROM channel_passwords WHERE channel_id = channels.id)"
    " FROM channels ";

Channel readChannel(const SqliteStatement& row) {
    Channel channel;
    channel.id = row.columnInt64(0);
    channel.name = row.columnText(1);
    channel.topic = row.columnText(2);
    channel.hostId = row.columnInt64(3);  // NULL reads as 0: no host
    channel.official = row.columnInt64(4) != 0;
    channel.createdAt = row.columnInt64(5);
    channel.lastUsedAt = row.columnInt64(6);
    channel.passwordHash = row.columnText(7);  // NULL reads as empty: no password
    return channel;
}

}  // namespace

std::optional<Channel> SqliteChannelStore::findByName(std::string_view name) {
    SqliteStatement query(db_, std::string(kColumns) + "WHERE name = ?1");
    query.bind(1, name);
    if (!query.step()) {
        return std::nullopt;
    }
    return readChannel(query);
}

bool SqliteChannelStore::create(Channel& channel) {
    SqliteStatement insert(db_,
                           "INSERT INTO channels (name, topic, host_id, official, created_at,"
                           " last_used_at) VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
    insert.bind(1, channel.name).bind(2, channel.topic);
    if (channel.hostId > 0) {
        insert.bind(3, channel.hostId);
    } else {
        insert.bindNull(3);
    }
    insert.bind(4, std::int64_t{channel.official ? 1 : 0})
        .bind(5, channel.createdAt)
        .bind(6, channel.lastUsedAt);
    if (!insert.execute()) {
        return false;
    }
    SqliteStatement lastId(db_, "SELECT last_insert_rowid()");
    lastId.step();
    channel.id = lastId.columnInt64(0);
    return true;
}

void SqliteChannelStore::setTopic(std::int64_t channelId, const std::string& topic) {
    SqliteStatement update(db_, "UPDATE channels SET topic = ?2 WHERE id = ?1");
    update.bind(1, channelId).bind(2, topic);
    update.execute();
}

void SqliteChannelStore::setPasswordHash(std::int64_t channelId, const std::string& passwordHash) {
    if (passwordHash.empty()) {
        SqliteStatement erase(db_, "DELETE FROM channel_passwords WHERE channel_id = ?1");
        erase.bind(1, channelId);
        erase.execute();
        return;
    }
    SqliteStatement upsert(
        db_,
        "INSERT INTO channel_passwords (channel_id, password_hash) VALUES (?1, ?2)"
        " ON CONFLICT(channel_id) DO UPDATE SET password_hash = ?2");
    upsert.bind(1, channelId).bind(2, passwordHash);
    upsert.execute();
}

void SqliteChannelStore::setLastUsed(std::int64_t channelId, std::int64_t when) {
    SqliteStatement update(db_, "UPDATE channels SET last_used_at = ?2 WHERE id = ?1");
    update.bind(1, channelId).bind(2, when);
    update.execute();
}

std::size_t SqliteChannelStore::countHostedBy(std::int64_t accountId) {
    SqliteStatement query(db_, "SELECT COUNT(*) FROM channels WHERE host_id = ?1 AND official = 0");
    query.bind(1, accountId);
    query.step();
    return static_cast<std::size_t>(query.columnInt64(0));
}

std::size_t SqliteChannelStore::count() {
    SqliteStatement query(db_, "SELECT COUNT(*) FROM channels");
    query.step();
    return static_cast<std::size_t>(query.columnInt64(0));
}

std::vector<Channel> SqliteChannelStore::list(std::size_t limit) {
    SqliteStatement query(db_, std::string(kColumns) + "ORDER BY official DESC, name LIMIT ?1");
    query.bind(1, static_cast<std::int64_t>(std::min<std::size_t>(limit, INT32_MAX)));
    std::vector<Channel> channels;
    while (query.step()) {
        channels.push_back(readChannel(query));
    }
    return channels;
}

std::vector<Channel> SqliteChannelStore::unusedSince(std::int64_t cutoff) {
    SqliteStatement query(db_, std::string(kColumns) + "WHERE official = 0 AND last_used_at < ?1");
    query.bind(1, cutoff);
    std::vector<Channel> channels;
    while (query.step()) {
        channels.push_back(readChannel(query));
    }
    return channels;
}

void SqliteChannelStore::remove(std::int64_t channelId) {
    SqliteStatement erase(db_, "DELETE FROM channels WHERE id = ?1");
    erase.bind(1, channelId);
    erase.execute();
}

void SqliteChannelStore::setOfficial(const std::vector<std::string>& names, std::int64_t now) {
    db_.inTransaction([&] {
        db_.execute("UPDATE channels SET official = 0 WHERE official = 1");
        for (const std::string& name : names) {
            // A member channel of that name becomes official and keeps its topic; it has no host
            // from now on, and no longer counts among the channels its creator hosts.
            SqliteStatement upsert(db_,
                                   "INSERT INTO channels (name, official, created_at, last_used_at)"
                                   " VALUES (?1, 1, ?2, ?2)"
                                   " ON CONFLICT(name) DO UPDATE SET official = 1, host_id = NULL");
            upsert.bind(1, name).bind(2, now);
            upsert.execute();
        }
    });
}

}  // namespace tavren::server
