#include "core/UpdateDownload.h"

#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QSaveFile>
#include <algorithm>

namespace tavren {

namespace {

bool webAddress(const QUrl& url) {
    const QString scheme = url.scheme().toLower();
    return url.isValid() && !url.host().isEmpty() &&
           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

}  // namespace

UpdateDownload::UpdateDownload(QNetworkAccessManager& network, const QString& dataRoot,
                               QObject* parent)
    : QObject(parent), network_(network), dataRoot_(dataRoot) {}

UpdateDownload::~UpdateDownload() {
    // Going away mid-download (the program ends): the half-written file goes, quietly.
    if (QNetworkReply* reply = reply_) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    if (file_) {
        file_->cancelWriting();
    }
}

QString UpdateDownload::folder(const QString& dataRoot) {
    return QDir(dataRoot).filePath(QStringLiteral("updates"));
}

QString UpdateDownload::fileNameFor(const QUrl& url, const QString& version) {
    static const QRegularExpression unsafe(QStringLiteral("[^A-Za-z0-9._-]"));
    QString name = url.fileName(QUrl::FullyDecoded);
    name.remove(unsafe);
    while (name.startsWith(QLatin1Char('.'))) {
        name.remove(0, 1);  // no hidden files, no "." or ".."
    }
    name = name.left(100);
    if (name.isEmpty()) {
        QString safeVersion = version;
        safeVersion.remove(unsafe);
        name = QStringLiteral("tavren-setup-") + safeVersion.left(20);
    }
    return name;
}

QByteArray UpdateDownload::parseChecksum(const QString& field) {
    QString text = field.trimmed();
    if (text.startsWith(QLatin1String("sha256="), Qt::CaseInsensitive)) {
        text = text.mid(7);
    }
    static const QRegularExpression hex(QStringLiteral("^[0-9A-Fa-f]{64}$"));
    return hex.match(text).hasMatch() ? text.toLower().toLatin1() : QByteArray();
}

void UpdateDownload::start(const QUrl& url, const QString& version, const QByteArray& sha256Hex) {
    if (state_ == State::Downloading) {
        return;
    }
    received_ = 0;
    hash_.reset();
    expected_ = sha256Hex.toLower();
    state_ = State::Downloading;
    if (!webAddress(url)) {
        fail(State::Failed, tr("The update's address is not an http or https address."));
        return;
    }
    if (parseChecksum(QString::fromLatin1(expected_)).isEmpty()) {
        fail(State::Failed, tr("The server gave no checksum for the update, so it cannot be "
                               "checked and is not downloaded."));
        return;
    }
    if (!QDir().mkpath(folder(dataRoot_))) {
        fail(State::Failed, tr("The folder %1 cannot be created.").arg(folder(dataRoot_)));
        return;
    }
    path_ = QDir(folder(dataRoot_)).filePath(fileNameFor(url, version));
    file_ = std::make_unique<QSaveFile>(path_);
    if (!file_->open(QIODevice::WriteOnly)) {
        fail(State::Failed, tr("%1 cannot be written: %2").arg(path_, file_->errorString()));
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    request.setTransferTimeout(stallMs_);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Tavren"));
    clock_.start();
    progress_ = TransferProgress();
    progress_.start(0, 0);
    reply_ = network_.get(request);
    connect(reply_, &QNetworkReply::readyRead, this, &UpdateDownload::onReadyRead);
    connect(reply_, &QNetworkReply::finished, this, &UpdateDownload::onFinished);
    connect(reply_, &QNetworkReply::redirected, this, [this](const QUrl& next) {
        if (!webAddress(next)) {
            fail(State::Failed, tr("The update's address led away from the web."));
        }
    });
}

void UpdateDownload::cancel() {
    if (state_ == State::Downloading) {
        fail(State::Cancelled, tr("The download was cancelled."));
    }
}

void UpdateDownload::onReadyRead() {
    if (state_ != State::Downloading || reply_ == nullptr) {
        return;
    }
    const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != 0 && (status < 200 || status > 299)) {
        return;  // an error page: onFinished says so
    }
    const QByteArray bytes = reply_->readAll();
    const qint64 total =
        std::max<qint64>(reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong(), 0);
    if (total > kLargestInstaller || received_ + bytes.size() > kLargestInstaller) {
        fail(State::Failed, tr("The update is larger than any installer."));
        return;
    }
    if (file_->write(bytes) != bytes.size()) {
        fail(State::Failed, tr("%1 cannot be written: %2").arg(path_, file_->errorString()));
        return;
    }
    hash_.addData(bytes);
    received_ += bytes.size();
    if (total != progress_.total()) {
        progress_.start(total, clock_.elapsed());  // the total arrives with the first bytes
    }
    progress_.update(received_, clock_.elapsed());
    emit progressed(received_, total);
}

void UpdateDownload::onFinished() {
    if (state_ != State::Downloading || reply_ == nullptr) {
        return;
    }
    onReadyRead();
    if (state_ != State::Downloading) {
        return;
    }
    QNetworkReply* reply = reply_;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() == QNetworkReply::OperationCanceledError ||
        reply->error() == QNetworkReply::TimeoutError) {
        fail(State::Failed,
             tr("The download stalled: no data for %1 seconds.").arg(stallMs_ / 1000));
        return;
    }
    if (reply->error() != QNetworkReply::NoError && status == 0) {
        fail(State::Failed, tr("The update could not be downloaded: %1").arg(reply->errorString()));
        return;
    }
    if (status < 200 || status > 299) {
        fail(State::Failed, tr("The update could not be downloaded: the server answered with "
                               "HTTP status %1.")
                                .arg(status));
        return;
    }
    const qint64 announced = reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    if (announced > 0 && received_ != announced) {
        fail(State::Failed,
             tr("The download ended early: %1 of %2 bytes.").arg(received_).arg(announced));
        return;
    }
    if (hash_.result().toHex() != expected_) {
        fail(State::Failed, tr("The downloaded file is not the update the server named (its "
                               "checksum differs). It was deleted."));
        return;
    }
    if (!file_->commit()) {
        fail(State::Failed, tr("%1 cannot be written: %2").arg(path_, file_->errorString()));
        return;
    }
    file_.reset();
    reply_ = nullptr;
    reply->deleteLater();
    progress_.finish(clock_.elapsed());
    state_ = State::Done;
    emit finished(true, QString());
}

void UpdateDownload::fail(State state, const QString& error) {
    if (QNetworkReply* reply = reply_) {
        reply_ = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    if (file_) {
        file_->cancelWriting();  // the temporary file goes; nothing takes the name
        file_.reset();
    }
    state_ = state;
    emit finished(false, error);
}

}  // namespace tavren
