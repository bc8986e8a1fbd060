#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

namespace tavren::test {

// A small HTTP/1.1 server on 127.0.0.1 for the web tests: each path gets a canned answer, sent
// whole, slowly in pieces, only in part (then silence), or never. No test touches the internet.
class LocalHttpServer : public QObject {
    Q_OBJECT
  public:
    struct Answer {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json";
        bool silent = false;    // read the request, never answer
        int pieceBytes = 0;     // > 0: the body goes in pieces of this size ...
        int pieceDelayMs = 0;   // ... one every this many milliseconds
        qint64 stopAfter = -1;  // >= 0: this many body bytes, then silence (length announced)
        QByteArray location;    // a redirect's target
    };

    // An answer sent whole.
    static Answer reply(int status, const QByteArray& body,
                        const QByteArray& contentType = "application/json") {
        Answer answer;
        answer.status = status;
        answer.body = body;
        answer.contentType = contentType;
        return answer;
    }

    LocalHttpServer();

    void answer(const QString& path, const Answer& answer) { answers_.insert(path, answer); }
    QUrl url(const QString& path) const;
    int requests(const QString& path) const { return requests_.value(path); }

  private:
    void serve(QTcpSocket* socket);

    QTcpServer server_;
    QHash<QString, Answer> answers_;
    QHash<QString, int> requests_;
};

}  // namespace tavren::test
