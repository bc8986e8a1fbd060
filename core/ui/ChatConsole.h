#pragma once

#include <QWidget>

class QLineEdit;
class QPlainTextEdit;

namespace tavren {

class ServerConsole;

// The server console window: what the server announced and answered, lists included, in one
// log as wide as the window, and a command line for the server that has the keyboard whenever
// the window comes up.
class ChatConsole : public QWidget {
    Q_OBJECT
  public:
    explicit ChatConsole(ServerConsole& console, QWidget* parent = nullptr);

    QString logText() const;
    QLineEdit* input() const { return input_; }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void send();

    ServerConsole& console_;
    QPlainTextEdit* log_;
    QLineEdit* input_;
};

}  // namespace tavren
