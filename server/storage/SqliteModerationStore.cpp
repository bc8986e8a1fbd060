#include "server/storage/SqliteModerationStore.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

namespace {

// Reads by_name, reason, at from three columns starting at `first`.
Sanction readSanction(const SqliteStatement& row, int first) {
    return Sanction{row.columnText(first), row.columnText(first + 1), row.columnInt64(first + 2)};
}

std::int64_t asLimit(std::size_t limit) {
    return static_cast<std::int64_t>(std::min<std::size_t>(limit, INT64_MAX));
}

}  // namespace

std::optional<Sanction> SqliteModerationStore::channelBan(std::int64_t channelId,
                                                          std::int64_t accountId) {
    SqliteStatement query(db_,
                          "SELECT by_name, reason, at FROM channel_bans"
                          " WHERE channel_id = ?1 AND account_id = ?2");
    query.bind(1, channelId).bind(2, accountId);
    if (!query.step()) {
        return std::nullopt;
    }
    return readSanction(query, 0);
}

void SqliteModerationStore::setChannelBan(std::int64_t channelId, std::int64_t accountId,
                                          const Sanction& sanction) {
    SqliteStatement upsert(db_,
                           "INSERT INTO channel_bans (channel_id, account_id, by_name, reason, at)"
                           " VALUES (?1, ?2, ?3, ?4, ?5) ON CONFLICT(channel_id, account_id)"
                           " DO UPDATE SET by_name = ?3, reason = ?4, at = ?5");
    upsert.bind(1, channelId)
        .bind(2, accountId)
        .bind(3, sanction.by)
        .bind(4, sanction.reason)
        .bind(5, sanction.at);
    upsert.execute();
}

bool SqliteModerationStore::liftChannelBan(std::int64_t channelId, std::int64_t accountId) {
    SqliteStatement erase(db_,
                          "DELETE FROM channel_bans WHERE channel_id = ?1 AND account_id = ?2");
    erase.bind(1, channelId).bind(2, accountId);
    erase.execute();
    return sqlite3_changes(db_.handle()) > 0;
}

std::vector<ListedSanction> SqliteModerationStore::channelBans(std::int64_t channelId,
                                                               std::size_t limit) {
    SqliteStatement query(db_,
                          "SELECT accounts.name, by_name, reason, at FROM channel_bans"
                          " JOIN accounts ON accounts.id = account_id WHERE channel_id = ?1"
                          " ORDER BY at, accounts.name LIMIT ?2");
    query.bind(1, channelId).bind(2, asLimit(limit));
    std::vector<ListedSanction> bans;
    while (query.step()) {
        bans.push_back({query.columnText(0), {}, readSanction(query, 1)});
    }
    return bans;
}

std::optional<Sanction> SqliteModerationStore::accountSanction(const char* table,
                                                               std::int64_t accountId) {
    SqliteStatement query(
        db_, std::string("SELECT by_name, reason, at FROM ") + table + " WHERE account_id = ?1");
    query.bind(1, accountId);
    if (!query.step()) {
        return std::nullopt;
    }
    return readSanction(query, 0);
}

void SqliteModerationStore::setAccountSanction(const char* table, std::int64_t accountId,
                                               const Sanction& sanction) {
    SqliteStatement upsert(db_, std::string("INSERT INTO ") + table +
                                    " (account_id, by_name, reason, at) VALUES (?1, ?2, ?3, ?4)"
                                    " ON CONFLICT(account_id) DO UPDATE SET by_name = ?2,"
                                    " reason = ?3, at = ?4");
    upsert.bind(1, accountId).bind(2, sanction.by).bind(3, sanction.reason).bind(4, sanction.at);
    upsert.execute();
}

bool SqliteModerationStore::liftAccountSanction(const char* table, std::int64_t accountId) {
    SqliteStatement erase(db_, std::string("DELETE FROM ") + table + " WHERE account_id = ?1");
    erase.bind(1, accountId);
    erase.execute();
    return sqlite3_changes(db_.handle()) > 0;
}

std::vector<ListedSanction> SqliteModerationStore::accountSanctions(const char* table,
                                                                    std::size_t limit) {
    SqliteStatement query(db_, std::string("SELECT accounts.name, by_name, reason, at FROM ") +
                                   table + " JOIN accounts ON accounts.id = account_id" +
                                   " ORDER BY at, accounts.name LIMIT ?1");
    query.bind(1, asLimit(limit));
    std::vector<ListedSanction> listed;
    while (query.step()) {
        listed.push_back({query.columnText(0), {}, readSanction(query, 1)});
    }
    return listed;
}

std::optional<Sanction> SqliteModerationStore::accountBan(std::int64_t accountId) {
    return accountSanction("account_bans", accountId);
}

void SqliteModerationStore::setAccountBan(std::int64_t accountId, const Sanction& sanction) {
    setAccountSanction("account_bans", accountId, sanction);
}

bool SqliteModerationStore::liftAccountBan(std::int64_t accountId) {
    return liftAccountSanction("account_bans", accountId);
}

std::vector<ListedSanction> SqliteModerationStore::accountBans(std::size_t limit) {
    return accountSanctions("account_bans", limit);
}

std::optional<Sanction> SqliteModerationStore::suspension(std::int64_t accountId) {
    return accountSanction("suspensions", accountId);
}

void SqliteModerationStore::setSuspension(std::int64_t accountId, const Sanction& sanction) {
    setAccountSanction("suspensions", accountId, sanction);
}

bool SqliteModerationStore::liftSuspension(std::int64_t accountId) {
    return liftAccountSanction("suspensions", accountId);
}

std::vector<ListedSanction> SqliteModerationStore::suspensions(std::size_t limit) {
    return accountSanctions("suspensions", limit);
}

void SqliteModerationStore::setRangeBan(const std::string& range, const std::string& member,
                                        const Sanction& sanction) {
    SqliteStatement upsert(db_,
                           "INSERT INTO range_bans (address_range, member, by_name, reason, at)"
                           " VALUES (?1, ?2, ?3, ?4, ?5) ON CONFLICT(address_range)"
                           " DO UPDATE SET member = ?2, by_name = ?3, reason = ?4, at = ?5");
    upsert.bind(1, range)
        .bind(2, member)
        .bind(3, sanction.by)
        .bind(4, sanction.reason)
        .bind(5, sanction.at);
    upsert.execute();
}

bool SqliteModerationStore::liftRangeBan(const std::string& range) {
    SqliteStatement erase(db_, "DELETE FROM range_bans WHERE address_range = ?1");
    erase.bind(1, range);
    erase.execute();
    return sqlite3_changes(db_.handle()) > 0;
}

std::vector<ListedSanction> SqliteModerationStore::rangeBans() {
    SqliteStatement query(db_,
                          "SELECT address_range, member, by_name, reason, at FROM range_bans"
                          " ORDER BY at, address_range");
    std::vector<ListedSanction> ranges;
    while (query.step()) {
        ranges.push_back({query.columnText(0), query.columnText(1), readSanction(query, 2)});
    }
    return ranges;
}

bool SqliteModerationStore::addReferral(std::int64_t referredId, std::int64_t referrerId,
                                        const std::string& channel, std::int64_t at) {
    SqliteStatement insert(db_,
                           "INSERT INTO referrals (referred_id, referrer_id, channel, at)"
                           " VALUES (?1, ?2, ?3, ?4) ON CONFLICT(referred_id) DO NOTHING");
    insert.bind(1, referredId).bind(2, referrerId).bind(3, channel).bind(4, at);
    insert.execute();
    return sqlite3_changes(db_.handle()) > 0;
}

std::optional<Referral> SqliteModerationStore::referrerOf(std::int64_t accountId) {
    SqliteStatement query(db_,
                          "SELECT accounts.name, channel, at FROM referrals"
                          " JOIN accounts ON accounts.id = referrer_id WHERE referred_id = ?1");
    query.bind(1, accountId);
    if (!query.step()) {
        return std::nullopt;
    }
    return Referral{query.columnText(0), query.columnText(1), query.columnInt64(2)};
}

std::vector<std::string> SqliteModerationStore::referredBy(std::int64_t accountId,
                                                           std::size_t limit) {
    SqliteStatement query(db_,
                          "SELECT accounts.name FROM referrals JOIN accounts"
                          " ON accounts.id = referred_id WHERE referrer_id = ?1"
                          " ORDER BY at, accounts.name LIMIT ?2");
    query.bind(1, accountId).bind(2, asLimit(limit));
    std::vector<std::string> names;
    while (query.step()) {
        names.push_back(query.columnText(0));
    }
    return names;
}

std::size_t SqliteModerationStore::referralCount(std::int64_t accountId) {
    SqliteStatement query(db_, "SELECT COUNT(*) FROM referrals WHERE referrer_id = ?1");
    query.bind(1, accountId);
    query.step();
    return static_cast<std::size_t>(query.columnInt64(0));
}

}  // namespace tavren::server
