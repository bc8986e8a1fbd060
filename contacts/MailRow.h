#pragma once

#include <QString>
#include <QStringList>

namespace tavren {

// One mail of the inbox as the list shows it: the sender as the row's text, then the subject,
// the sent time (as the member reads it) and the body. `fields` are the record's fields as the
// server sent them; a delete sends them back unchanged, and the server reads the id among them.
struct MailRow {
    QString sender;
    QString subject;
    QString sentTime;
    QString body;
    QString id;
    QStringList fields;

    // Two rows are the same mail when the server gave them the same id (or, for a record
    // without one, the same fields).
    bool sameMail(const MailRow& other) const {
        return id.isEmpty() ? fields == other.fields : id == other.id;
    }
};

}  // namespace tavren
