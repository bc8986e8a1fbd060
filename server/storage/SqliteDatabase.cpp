#include "server/storage/SqliteDatabase.h"

#include <sqlite3.h>

#include <array>
#include <system_error>

#include "server/storage/SqliteStatement.h"
#include "server/storage/StorageError.h"

namespace tavren::server {

namespace {

// Each step brings the schema from version i to i + 1; a new table is a new step at the end,
// never an edit of an old one, so every existing database upgrades the same way.
constexpr std::array kSchemaSteps = {
    R"(CREATE TABLE accounts (
           id INTEGER PRIMARY KEY,
           name TEXT NOT NULL UNIQUE COLLATE NOCASE,
           password_hash TEXT NOT NULL,
           email TEXT NOT NULL DEFAULT '',
           staff_level INTEGER NOT NULL DEFAULT 0 CHECK (staff_level BETWEEN 0 AND 3),
           score INTEGER NOT NULL DEFAULT 0,
           created_at INTEGER NOT NULL,
           nickname_format TEXT NOT NULL DEFAULT ''
       ))",
    // Channels outlive their members: name, topic and host stay until the channel has been empty
    // for the expiry time. Official channels have no host.
    R"(CREATE TABLE channels (
           id INTEGER PRIMARY KEY,
           name TEXT NOT NULL UNIQUE COLLATE NOCASE,
           topic TEXT NOT NULL DEFAULT '',
           host_id INTEGER REFERENCES accounts(id) ON DELETE SET NULL,
           official INTEGER NOT NULL DEFAULT 0 CHECK (official IN (0, 1)),
           created_at INTEGER NOT NULL,
           last_used_at INTEGER NOT NULL
       );
       CREATE INDEX channels_by_host ON channels(host_id);
       CREATE INDEX channels_by_last_use ON channels(last_used_at) WHERE official = 0;)",
    // A buddy list is its entries in order, each naming an account, so a list always reads back
    // in the accounts' own spelling. Nobody is anybody's buddy twice.
    R"(CREATE TABLE buddies (
           owner_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           position INTEGER NOT NULL,
           folder TEXT NOT NULL,
           buddy_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           PRIMARY KEY (owner_id, position),
           UNIQUE (owner_id, buddy_id)
       );
       CREATE INDEX buddies_by_buddy ON buddies(buddy_id);)",
    // Offline mail: each addressee's copy is a row of its own, so deleting it touches no one
    // else's. The sender is kept as spelled when the mail was written.
    R"(CREATE TABLE mail (
           id INTEGER PRIMARY KEY,
           owner_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           sender TEXT NOT NULL,
           subject TEXT NOT NULL,
           body TEXT NOT NULL,
           sent_at INTEGER NOT NULL
       );
       CREATE INDEX mail_by_owner ON mail(owner_id, sent_at);)",
    // Profile pages, one per member who has written one; the first web address of the page is
    // kept beside it for the member search. E-mail addresses get an index for the search by a
    // whole address.
    R"(CREATE TABLE profiles (
           account_id INTEGER PRIMARY KEY REFERENCES accounts(id) ON DELETE CASCADE,
           page TEXT NOT NULL,
           link TEXT NOT NULL DEFAULT '',
           updated_at INTEGER NOT NULL
       );
       CREATE INDEX accounts_by_email ON accounts(email COLLATE NOCASE) WHERE email <> '';)",
    // Moderation: bans from one channel and from every channel, suspended accounts, banned
    // address ranges, who brought whom (the first invitation a member accepted), and the hashed
    // passwords of protected channels. A channel's bans and password go with the channel.
    R"(CREATE TABLE channel_bans (
           channel_id INTEGER NOT NULL REFERENCES channels(id) ON DELETE CASCADE,
           account_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           by_name TEXT NOT NULL,
           reason TEXT NOT NULL,
           at INTEGER NOT NULL,
           PRIMARY KEY (channel_id, account_id)
       );
       CREATE TABLE account_bans (
           account_id INTEGER PRIMARY KEY REFERENCES accounts(id) ON DELETE CASCADE,
           by_name TEXT NOT NULL,
           reason TEXT NOT NULL,
           at INTEGER NOT NULL
       );
       CREATE TABLE suspensions (
           account_id INTEGER PRIMARY KEY REFERENCES accounts(id) ON DELETE CASCADE,
           by_name TEXT NOT NULL,
           reason TEXT NOT NULL,
           at INTEGER NOT NULL
       );
       CREATE TABLE range_bans (
           address_range TEXT PRIMARY KEY,
           member TEXT NOT NULL,
           by_name TEXT NOT NULL,
           reason TEXT NOT NULL,
           at INTEGER NOT NULL
       );
       CREATE TABLE referrals (
           referred_id INTEGER PRIMARY KEY REFERENCES accounts(id) ON DELETE CASCADE,
           referrer_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           channel TEXT NOT NULL,
           at INTEGER NOT NULL
       );
       CREATE INDEX referrals_by_referrer ON referrals(referrer_id);
       CREATE TABLE channel_passwords (
           channel_id INTEGER PRIMARY KEY REFERENCES channels(id) ON DELETE CASCADE,
           password_hash TEXT NOT NULL
       );)",
    // Chips a member has on a Hold'em table, as they stood at the end of the last hand: they go
    // back to the member's score when the member leaves, or at the next start after a stop.
    R"(CREATE TABLE holdem_stakes (
           account_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
           table_name TEXT NOT NULL COLLATE NOCASE,
           chips INTEGER NOT NULL CHECK (chips >= 0),
           PRIMARY KEY (account_id, table_name)
       ))",
};

}  // namespace

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file) {
    std::error_code ignored;
    if (file.has_parent_path()) {
        std::filesystem::create_directories(file.parent_path(), ignored);
    }
    if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        const std::string reason = db_ ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        db_ = nullptr;
        throw StorageError("cannot open database " + file.string() + ": " + reason);
    }
    try {
        sqlite3_busy_timeout(db_, 5000);
        execute("PRAGMA journal_mode=WAL");
        // Durability: in WAL mode with synchronous=NORMAL a commit appends to the log and returns
        // without an fsync; the log and the database are synced at checkpoints. A killed server
        // loses no committed change (the log is in the system's cache); a power cut may lose the
        // commits since the last checkpoint, never the database's consistency.
        execute("PRAGMA synchronous=NORMAL");
        execute("PRAGMA foreign_keys=ON");
        migrate();
    } catch (...) {
        sqlite3_close(db_);
        db_ = nullptr;
        throw;
    }
}

SqliteDatabase::~SqliteDatabase() {
    sqlite3_close(db_);
}

void SqliteDatabase::leaveCheckpointsToOthers() {
    execute("PRAGMA wal_autocheckpoint=0");
}

void SqliteDatabase::execute(const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string reason = message ? message : lastError();
        sqlite3_free(message);
        throw StorageError("database error: " + reason);
    }
}

std::string SqliteDatabase::lastError() const {
    return sqlite3_errmsg(db_);
}

void SqliteDatabase::migrate() {
    SqliteStatement readVersion(*this, "PRAGMA user_version");
    readVersion.step();
    const auto current = static_cast<std::size_t>(readVersion.columnInt64(0));
    if (current > kSchemaSteps.size()) {
        throw StorageError("the database was written by a newer server (schema version " +
                           std::to_string(current) + ")");
    }
    for (std::size_t step = current; step < kSchemaSteps.size(); ++step) {
        inTransaction([&] {
            execute(kSchemaSteps[step]);
            execute("PRAGMA user_version=" + std::to_string(step + 1));
        });
    }
}

void SqliteDatabase::inTransaction(const std::function<void()>& work) {
    execute("BEGIN IMMEDIATE");
    try {
        work();
        execute("COMMIT");
    } catch (...) {
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

}  // namespace tavren::server
