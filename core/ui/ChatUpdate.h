#pragma once

#include <QNetworkAccessManager>
#include <QWidget>
#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace tavren {

class UpdateDownload;

// The update download window: where the installer comes from, a progress bar, the bytes, rate
// and time left, and Cancel. Once the installer is downloaded and its checksum checked, it is
// opened with the desktop (which runs or shows it) and the window says where it is kept.
class ChatUpdate : public QWidget {
    Q_OBJECT
  public:
    // Opens a finished installer; tests put their own in place of the desktop.
    using Opener = std::function<bool(const QString& path)>;

    ChatUpdate(const QString& dataRoot, QWidget* parent = nullptr);
    ~ChatUpdate() override;

    // Starts downloading `url` (the client `version`, checked against `sha256`).
    void start(const QString& url, const QString& version, const QString& sha256);
    void setOpener(Opener opener) { opener_ = std::move(opener); }
    UpdateDownload& download() { return *download_; }

    QString statusText() const;
    QString detailText() const;

  private:
    void showProgress(qint64 received, qint64 total);
    void onFinished(bool ok, const QString& error);

    QNetworkAccessManager network_;
    UpdateDownload* download_;
    Opener opener_;
    QLabel* status_;
    QLabel* source_;
    QProgressBar* bar_;
    QLabel* detail_;
    QPushButton* button_;
};

}  // namespace tavren
