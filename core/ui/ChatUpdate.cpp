#include "core/ui/ChatUpdate.h"

#include <QDesktopServices>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <cmath>

#include "core/UpdateDownload.h"

namespace tavren {

ChatUpdate::ChatUpdate(const QString& dataRoot, QWidget* parent)
    : QWidget(parent, Qt::Window), download_(new UpdateDownload(network_, dataRoot, this)) {
    setObjectName(QStringLiteral("ChatUpdate"));
    setWindowTitle(tr("Tavren Update"));
    opener_ = [](const QString& path) {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    };
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("status"));
    QFont bold = status_->font();
    bold.setBold(true);
    status_->setFont(bold);
    status_->setWordWrap(true);
    source_ = new QLabel(this);
    source_->setObjectName(QStringLiteral("source"));
    source_->setTextFormat(Qt::PlainText);
    source_->setWordWrap(true);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(QStringLiteral("progress"));
    bar_->setRange(0, 0);  // busy until the size is known
    detail_ = new QLabel(this);
    detail_->setObjectName(QStringLiteral("detail"));
    detail_->setTextFormat(Qt::PlainText);
    detail_->setWordWrap(true);
    // Room for the longest message (where the installer is kept) without the window growing.
    detail_->setMinimumHeight(detail_->fontMetrics().lineSpacing() * 3);
    detail_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    button_ = new QPushButton(tr("&Cancel"), this);
    button_->setObjectName(QStringLiteral("cancel"));
    connect(button_, &QPushButton::clicked, this, [this] {
        if (download_->state() == UpdateDownload::State::Downloading) {
            download_->cancel();
        } else {
            close();
        }
    });
    connect(download_, &UpdateDownload::progressed, this, &ChatUpdate::showProgress);
    connect(download_, &UpdateDownload::finished, this, &ChatUpdate::onFinished);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(button_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(status_);
    layout->addWidget(source_);
    layout->addWidget(bar_);
    layout->addWidget(detail_);
    layout->addStretch(1);
    layout->addLayout(buttons);
    resize(440, sizeHint().height());
}

ChatUpdate::~ChatUpdate() = default;

void ChatUpdate::start(const QString& url, const QString& version, const QString& sha256) {
    status_->setText(tr("Downloading Tavren %1..").arg(version));
    source_->setText(tr("From: %1").arg(url));
    detail_->setText(tr("Connecting.."));
    bar_->setRange(0, 0);
    button_->setText(tr("&Cancel"));
    download_->start(QUrl(url), version, sha256.toLatin1());
}

QString ChatUpdate::statusText() const {
    return status_->text();
}

QString ChatUpdate::detailText() const {
    return detail_->text();
}

void ChatUpdate::showProgress(qint64 received, qint64 total) {
    const QLocale locale;
    const double rate = download_->progress().bytesPerSecond();
    QString text;
    if (total > 0) {
        bar_->setRange(0, 1000);
        bar_->setValue(int(received * 1000 / total));
        text =
            tr("%1 of %2").arg(locale.formattedDataSize(received), locale.formattedDataSize(total));
    } else {
        text = locale.formattedDataSize(received);
    }
    if (rate > 0) {
        text += tr(" at %1/s").arg(locale.formattedDataSize(qint64(std::llround(rate))));
        if (total > 0) {
            text += tr(", %1 left").arg(TransferProgress::timeLeft(total - received, rate));
        }
    }
    detail_->setText(text);
}

void ChatUpdate::onFinished(bool ok, const QString& error) {
    button_->setText(tr("&Close"));
    if (!ok) {
        bar_->setRange(0, 1000);
        bar_->setValue(0);
        status_->setText(download_->state() == UpdateDownload::State::Cancelled
                             ? tr("The download was cancelled.")
                             : tr("The update was not downloaded."));
        detail_->setText(error);
        return;
    }
    bar_->setRange(0, 1000);
    bar_->setValue(1000);
    const QString path = QDir::toNativeSeparators(download_->path());
    status_->setText(tr("Downloaded and checked."));
    detail_->setText(opener_(download_->path())
                         ? tr("The installer has been opened. It is kept at %1.").arg(path)
                         : tr("The installer could not be opened; it is kept at %1.").arg(path));
}

}  // namespace tavren
