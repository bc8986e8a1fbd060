#include "web/HttpFetch.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace tavren {

HttpFetch::HttpFetch(QNetworkAccessManager& network, QObject* parent)
    : QObject(parent), network_(network) {
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this,
            [this] { fail(tr("the service did not answer in time")); });
}

HttpFetch::~HttpFetch() {
    abandon();
}

bool HttpFetch::isWebAddress(const QUrl& url) {
    const QString scheme = url.scheme().toLower();
    return url.isValid() && !url.host().isEmpty() &&
           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

void HttpFetch::get(const QUrl& url) {
    abandon();
    if (!isWebAddress(url)) {
        emit finished({}, tr("the address is not an http or https address"));
        return;
    }
    QNetworkRequest request(url);
    // Redirects may not lead from https to http, nor anywhere but the web.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Tavren"));
    body_.clear();
    reply_ = network_.get(request);
    connect(reply_, &QNetworkReply::readyRead, this, &HttpFetch::onReadyRead);
    connect(reply_, &QNetworkReply::finished, this, &HttpFetch::onFinished);
    deadline_.start(timeoutMs_);
}

void HttpFetch::abandon() {
    deadline_.stop();
    if (QNetworkReply* reply = reply_) {
        reply_ = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void HttpFetch::onReadyRead() {
    body_ += reply_->readAll();
    if (body_.size() > maxBytes_) {
        fail(tr("the answer was too large"));
    }
}

void HttpFetch::onFinished() {
    QNetworkReply* reply = reply_;
    if (reply == nullptr) {
        return;
    }
    reply_ = nullptr;
    deadline_.stop();
    reply->deleteLater();
    body_ += reply->readAll();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError && status == 0) {
        emit finished({}, tr("the service could not be reached (%1)").arg(reply->errorString()));
        return;
    }
    if (status < 200 || status > 299) {
        emit finished({}, tr("the service answered with HTTP status %1").arg(status));
        return;
    }
    if (body_.size() > maxBytes_) {
        emit finished({}, tr("the answer was too large"));
        return;
    }
    emit finished(body_, QString());
}

void HttpFetch::fail(const QString& error) {
    if (reply_ == nullptr) {
        return;
    }
    abandon();
    body_.clear();
    emit finished({}, error);
}

}  // namespace tavren
