#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include "core/ServerMessage.h"

namespace tavren {

class ServerSession;

// The member search: one request (6, 1) field U+0001 text, and the records that answer it. The
// server decides what a field finds ("Name": the start of a name, "Email": a whole address,
// "Profile": text of the page) and sends at most eight fields per member: name, presence,
// channel, member since, profile, link. Nothing here needs a widget.
class MemberSearch : public QObject {
    Q_OBJECT
  public:
    // A record holds at most this many fields; any further text stays in the last one.
    static constexpr int kMostFields = 8;
    // Field positions of a result record.
    enum Column { Name, Status, Channel, MemberSince, Profile, Link };

    explicit MemberSearch(ServerSession& server, QObject* parent = nullptr);

    // The fields the search list offers, in its order ("Email" among them).
    static QStringList fields();
    // The result list's column titles, one per field the server fills.
    static QStringList columnTitles();

    // The window's caption: idle, while searching (`step` 0..3 adds that many dots), and done.
    static QString idleCaption();
    static QString searchingCaption(int step);
    static QString doneCaption(int results);

    // Sends the request; false (nothing sent) for an empty text or while offline.
    bool search(const QString& field, const QString& text);
    bool searching() const { return searching_; }
    const QVector<QStringList>& results() const { return results_; }
    // The last answer left out members beyond the server's bound.
    bool cut() const { return cut_; }

    void onResults(const ServerMessage& message);

  signals:
    void started();
    void finished(int results);

  private:
    ServerSession& server_;
    QVector<QStringList> results_;
    bool searching_ = false;
    bool cut_ = false;
};

}  // namespace tavren
