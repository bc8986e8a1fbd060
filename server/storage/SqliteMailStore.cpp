#include "server/storage/SqliteMailStore.h"

#include <sqlite3.h>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

std::vector<StoredMail> SqliteMailStore::inboxOf(std::int64_t ownerId) {
    SqliteStatement query(db_,
                          "SELECT id, sender, subject, body, sent_at FROM mail WHERE owner_id = ?1"
                          " ORDER BY sent_at DESC, id DESC");
    query.bind(1, ownerId);
    std::vector<StoredMail> mails;
    while (query.step()) {
        mails.push_back({query.columnInt64(0), query.columnText(1), query.columnText(2),
                         query.columnText(3), query.columnInt64(4)});
    }
    return mails;
}

std::size_t SqliteMailStore::countOf(std::int64_t ownerId) {
    SqliteStatement query(db_, "SELECT count(*) FROM mail WHERE owner_id = ?1");
    query.bind(1, ownerId);
    query.step();
    return static_cast<std::size_t>(query.columnInt64(0));
}

void SqliteMailStore::deliver(const StoredMail& mail, const std::vector<std::int64_t>& ownerIds) {
    db_.inTransaction([&] {
        SqliteStatement insert(db_,
                               "INSERT INTO mail (owner_id, sender, subject, body, sent_at)"
                               " VALUES (?1, ?2, ?3, ?4, ?5)");
        for (const std::int64_t owner : ownerIds) {
            insert.reset();
            insert.bind(1, owner)
                .bind(2, mail.sender)
                .bind(3, mail.subject)
                .bind(4, mail.body)
                .bind(5, mail.sentAt);
            insert.execute();
        }
    });
}

std::size_t SqliteMailStore::remove(std::int64_t ownerId,
                                    const std::vector<std::int64_t>& mailIds) {
    std::size_t removed = 0;
    db_.inTransaction([&] {
        SqliteStatement erase(db_, "DELETE FROM mail WHERE owner_id = ?1 AND id = ?2");
        for (const std::int64_t id : mailIds) {
            erase.reset();
            erase.bind(1, ownerId).bind(2, id);
            erase.execute();
            removed += static_cast<std::size_t>(sqlite3_changes(db_.handle()));
        }
    });
    return removed;
}

}  // namespace tavren::server
