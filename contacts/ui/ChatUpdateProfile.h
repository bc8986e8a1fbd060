#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTimer;

namespace tavren {

class ClientSession;
class Prompter;

// The profile editor: the member writes their page as HTML in RichTextBox1 (sent as typed, as
// plain text), with a running count, saves it (XPButton1) or previews it (XPButton3). An empty
// page and one over 10000 characters are refused before anything is sent. Saving sends the page
// at once; the progress bar (ProgressBar1) and its label (Label6) then step through 25 steps,
// a display only. The editor starts with the page the server has, once it comes.
class ChatUpdateProfile : public QWidget {
    Q_OBJECT
  public:
    ChatUpdateProfile(ClientSession& session, Prompter& prompter, QWidget* parent = nullptr);

    QPlainTextEdit& editor() const { return *editor_; }
    QLabel& countLabel() const { return *count_; }
    QLabel& progressLabel() const { return *progressLabel_; }
    QProgressBar& progress() const { return *progress_; }

    // Asks the server for the member's page, shown unless the member has typed meanwhile.
    void reload();
    void save();
    void preview();

  signals:
    void previewRequested(const QString& page);

  private:
    void step();

    ClientSession& session_;
    Prompter& prompter_;
    QPlainTextEdit* editor_ = nullptr;
    QLabel* count_ = nullptr;
    QLabel* progressLabel_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* saveButton_ = nullptr;
    QTimer* steps_ = nullptr;
    int step_ = 0;
};

}  // namespace tavren
