#include "web/LocalHttpServer.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <memory>

namespace tavren::test {

LocalHttpServer::LocalHttpServer() {
    server_.listen(QHostAddress::LocalHost, 0);
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server_.nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            auto request = std::make_shared<QByteArray>();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, request] {
                request->append(socket->readAll());
                if (request->contains("\r\n\r\n") && !socket->property("served").toBool()) {
                    socket->setProperty("served", true);
                    socket->setProperty("request", *request);
                    serve(socket);
                }
            });
        }
    });
}

QUrl LocalHttpServer::url(const QString& path) const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(server_.serverPort()).arg(path));
}

void LocalHttpServer::serve(QTcpSocket* socket) {
    const QByteArray request = socket->property("request").toByteArray();
    const QByteArray target = request.split(' ').value(1);
    // Answers are chosen by path; a query is the client's business.
    const QString path = QString::fromLatin1(target.split('?').value(0));
    requests_[path] += 1;
    const Answer answer = answers_.value(path, reply(404, "not here", "text/plain"));
    if (answer.silent) {
        return;
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Status\r\n";
    head += "Content-Type: " + answer.contentType + "\r\n";
    head += "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    if (!answer.location.isEmpty()) {
        head += "Location: " + answer.location + "\r\n";
    }
    head += "Connection: close\r\n\r\n";
    socket->write(head);
    QByteArray body = answer.body;
    if (answer.stopAfter >= 0) {
        body.truncate(answer.stopAfter);
    }
    const bool closeAtEnd = answer.stopAfter < 0;
    if (answer.pieceBytes <= 0) {
        socket->write(body);
        if (closeAtEnd) {
            socket->disconnectFromHost();
        }
        return;
    }
    auto sent = std::make_shared<qsizetype>(0);
    auto* timer = new QTimer(socket);
    QPointer<QTcpSocket> guard(socket);
    connect(timer, &QTimer::timeout, socket, [guard, timer, sent, body, answer, closeAtEnd] {
        QTcpSocket* client = guard.data();
        if (client == nullptr) {
            return;
        }
        if (*sent >= body.size()) {
            timer->stop();
            if (closeAtEnd) {
                client->disconnectFromHost();
            }
            return;
        }
        const qsizetype piece = std::min<qsizetype>(answer.pieceBytes, body.size() - *sent);
        client->write(body.mid(*sent, piece));
        *sent += piece;
    });
    timer->start(answer.pieceDelayMs);
}

}  // namespace tavren::test
