#include "server/storage/SqliteProfileStore.h"

#include <ctime>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

std::optional<std::string> SqliteProfileStore::pageOf(std::int64_t accountId) {
    SqliteStatement query(db_, "SELECT page FROM profiles WHERE account_id = ?1");
    query.bind(1, accountId);
    if (!query.step()) {
        return std::nullopt;
    }
    return query.columnText(0);
}

void SqliteProfileStore::save(std::int64_t accountId, const std::string& page,
                              const std::string& link) {
    SqliteStatement upsert(db_,
                           "INSERT INTO profiles (account_id, page, link, updated_at)"
                           " VALUES (?1, ?2, ?3, ?4) ON CONFLICT (account_id) DO UPDATE SET"
                           " page = excluded.page, link = excluded.link,"
                           " updated_at = excluded.updated_at");
    upsert.bind(1, accountId)
        .bind(2, page)
        .bind(3, link)
        .bind(4, static_cast<std::int64_t>(std::time(nullptr)));
    upsert.execute();
}

void SqliteProfileStore::remove(std::int64_t accountId) {
    SqliteStatement erase(db_, "DELETE FROM profiles WHERE account_id = ?1");
    erase.bind(1, accountId);
    erase.execute();
}

}  // namespace tavren::server
