#include "server/storage/SqliteChipBank.h"

#include <sqlite3.h>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

std::optional<std::int64_t> SqliteChipBank::balance(std::string_view name) {
    SqliteStatement query(db_, "SELECT score FROM accounts WHERE name = ?1");
    query.bind(1, name);
    if (!query.step()) {
        return std::nullopt;
    }
    return query.columnInt64(0);
}

void SqliteChipBank::grantUpTo(std::string_view name, std::int64_t chips) {
    SqliteStatement grant(db_, "UPDATE accounts SET score = ?2 WHERE name = ?1 AND score < ?2");
    grant.bind(1, name).bind(2, chips);
    grant.execute();
}

bool SqliteChipBank::buyIn(std::string_view name, std::string_view table, std::int64_t chips) {
    bool moved = false;
    db_.inTransaction([&] {
        SqliteStatement take(
            db_,
            "UPDATE accounts SET score = score - ?2 WHERE name = ?1 AND score >= ?2"
            " AND NOT EXISTS (SELECT 1 FROM holdem_stakes WHERE account_id ="
            " accounts.id AND table_name = ?3)");
        take.bind(1, name).bind(2, chips).bind(3, table);
        take.execute();
        if (sqlite3_changes(db_.handle()) == 0) {
            return;
        }
        SqliteStatement stake(db_,
                              "INSERT INTO holdem_stakes (account_id, table_name, chips)"
                              " SELECT id, ?2, ?3 FROM accounts WHERE name = ?1");
        stake.bind(1, name).bind(2, table).bind(3, chips);
        stake.execute();
        moved = true;
    });
    return moved;
}

void SqliteChipBank::setStakes(std::string_view table,
                               const std::vector<std::pair<std::string, std::int64_t>>& stakes) {
    db_.inTransaction([&] {
        SqliteStatement update(db_,
                               "UPDATE holdem_stakes SET chips = ?3 WHERE table_name = ?2 AND"
                               " account_id = (SELECT id FROM accounts WHERE name = ?1)");
        for (const auto& [name, chips] : stakes) {
            update.reset();
            update.bind(1, name).bind(2, table).bind(3, chips);
            update.execute();
        }
    });
}

void SqliteChipBank::cashOut(std::string_view name, std::string_view table, std::int64_t chips) {
    db_.inTransaction([&] {
        SqliteStatement close(db_,
                              "DELETE FROM holdem_stakes WHERE table_name = ?2 AND"
                              " account_id = (SELECT id FROM accounts WHERE name = ?1)");
        close.bind(1, name).bind(2, table);
        close.execute();
        SqliteStatement give(db_, "UPDATE accounts SET score = score + ?2 WHERE name = ?1");
        give.bind(1, name).bind(2, chips);
        give.execute();
    });
}

void SqliteChipBank::returnAllStakes() {
    db_.inTransaction([&] {
        db_.execute(
            "UPDATE accounts SET score = score + (SELECT SUM(chips) FROM holdem_stakes WHERE"
            " account_id = accounts.id) WHERE id IN (SELECT account_id FROM holdem_stakes)");
        db_.execute("DELETE FROM holdem_stakes");
    });
}

}  // namespace tavren::server
