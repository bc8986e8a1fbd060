#include "server/storage/SqliteBuddyStore.h"

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

std::vector<Buddy> SqliteBuddyStore::listOf(std::int64_t ownerId) {
    SqliteStatement query(db_,
                          "SELECT buddies.folder, accounts.name, accounts.id FROM buddies"
                          " JOIN accounts ON accounts.id = buddies.buddy_id"
                          " WHERE buddies.owner_id = ?1 ORDER BY buddies.position");
    query.bind(1, ownerId);
    std::vector<Buddy> buddies;
    while (query.step()) {
        buddies.push_back({query.columnText(0), query.columnText(1), query.columnInt64(2)});
    }
    return buddies;
}

void SqliteBuddyStore::replace(std::int64_t ownerId, const std::vector<Buddy>& buddies) {
    db_.inTransaction([&] {
        SqliteStatement erase(db_, "DELETE FROM buddies WHERE owner_id = ?1");
        erase.bind(1, ownerId);
        erase.execute();
        SqliteStatement insert(db_,
                               "INSERT INTO buddies (owner_id, position, folder, buddy_id)"
                               " VALUES (?1, ?2, ?3, ?4)");
        std::int64_t position = 0;
        for (const Buddy& buddy : buddies) {
            insert.reset();
            insert.bind(1, ownerId)
                .bind(2, position++)
                .bind(3, buddy.folder)
                .bind(4, buddy.accountId);
            insert.execute();
        }
    });
}

void SqliteBuddyStore::lookUp(std::vector<Buddy>& buddies) {
    SqliteStatement query(db_, "SELECT id, name FROM accounts WHERE name = ?1");
    for (Buddy& buddy : buddies) {
        query.reset();
        query.bind(1, buddy.name);
        if (query.step()) {
            buddy.accountId = query.columnInt64(0);
            buddy.name = query.columnText(1);
        }
    }
}

}  // namespace tavren::server
