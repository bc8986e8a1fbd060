#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <memory>

#include "pm/TransferProgress.h"

class QNetworkAccessManager;
class QSaveFile;

namespace tavren {

// Downloads the installer of a newer client that the server offered, into "updates" under the
// data root. Only http and https are fetched (redirects included). The bytes go to a temporary
// file beside the target while their SHA-256 is taken; only when the transfer is complete and
// the checksum is the one the server's notice carried does the file take its name. A failed,
// refused or cancelled download leaves nothing behind.
class UpdateDownload : public QObject {
    Q_OBJECT
  public:
    enum class State { Idle, Downloading, Done, Failed, Cancelled };

    // An installer larger than this is not one.
    static constexpr qint64 kLargestInstaller = qint64(1) << 30;
    // A transfer that moves no byte for this long has failed.
    static constexpr int kStallMs = 30000;

    UpdateDownload(QNetworkAccessManager& network, const QString& dataRoot,
                   QObject* parent = nullptr);
    ~UpdateDownload() override;

    // The folder the installers land in.
    static QString folder(const QString& dataRoot);
    // The installer's file name: the address's last path segment with only letters, digits,
    // '.', '-' and '_' kept, else "tavren-setup-" + version.
    static QString fileNameFor(const QUrl& url, const QString& version);
    // A checksum as the notice gives it ("sha256=" + 64 hex digits, or the bare digits) in
    // lower-case hex; empty when it is not one.
    static QByteArray parseChecksum(const QString& field);

    // Starts the download; finished() follows exactly once.
    void start(const QUrl& url, const QString& version, const QByteArray& sha256Hex);
    void cancel();

    State state() const { return state_; }
    QString path() const { return path_; }
    const TransferProgress& progress() const { return progress_; }
    void setStallTimeout(int ms) { stallMs_ = ms; }

  signals:
    // Bytes so far and in all (0 while unknown); progress() has the rate.
    void progressed(qint64 received, qint64 total);
    // `ok`: the verified installer is at path(). Otherwise `error` says what went wrong.
    void finished(bool ok, const QString& error);

  private:
    void onReadyRead();
    void onFinished();
    void fail(State state, const QString& error);

    QNetworkAccessManager& network_;
    QString dataRoot_;
    QPointer<QNetworkReply> reply_;
    std::unique_ptr<QSaveFile> file_;
    QCryptographicHash hash_{QCryptographicHash::Sha256};
    QByteArray expected_;
    QString path_;
    State state_ = State::Idle;
    qint64 received_ = 0;
    QElapsedTimer clock_;
    TransferProgress progress_;
    int stallMs_ = kStallMs;
};

}  // namespace tavren
