#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

class QNetworkAccessManager;

namespace tavren {

// One small GET at a time for the web lookups: http and https only, a bounded answer and a
// deadline for the whole exchange, so that a slow, silent or flooding service costs a clear
// line in the channel and nothing else. A new request abandons the one before.
class HttpFetch : public QObject {
    Q_OBJECT
  public:
    static constexpr int kDefaultTimeoutMs = 10000;
    // Weather and station answers are a few kilobytes; anything far larger is not one.
    static constexpr qint64 kDefaultMaxBytes = 512 * 1024;

    explicit HttpFetch(QNetworkAccessManager& network, QObject* parent = nullptr);
    ~HttpFetch() override;

    // Whether `url` is an address the lookups may fetch: http or https with a host.
    static bool isWebAddress(const QUrl& url);

    void setTimeout(int ms) { timeoutMs_ = ms; }
    void setMaxBytes(qint64 bytes) { maxBytes_ = bytes; }

    // Starts fetching; finished() follows exactly once (at once for an address refused here).
    void get(const QUrl& url);
    bool busy() const { return reply_ != nullptr; }
    void abandon();

  signals:
    // `error` is empty on success and otherwise says in a few words what went wrong.
    void finished(const QByteArray& body, const QString& error);

  private:
    void onReadyRead();
    void onFinished();
    void fail(const QString& error);

    QNetworkAccessManager& network_;
    QPointer<QNetworkReply> reply_;
    QTimer deadline_;
    QByteArray body_;
    int timeoutMs_ = kDefaultTimeoutMs;
    qint64 maxBytes_ = kDefaultMaxBytes;
};

}  // namespace tavren
