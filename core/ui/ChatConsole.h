#pragma once

#include <QWidget>

class QLineEdit;
class QListWidget;
class QPlainTextEdit;

namespace tavren {

class ServerConsole;

// The server console window: what the server announced, the latest list it sent, and a command
// line for the server.
class ChatConsole : public QWidget {
    Q_OBJECT
  public:
    explicit ChatConsole(ServerConsole& console, QWidget* parent = nullptr);

    QString logText() const;
    QLineEdit* input() const { return input_; }

  private:
    void send();

    ServerConsole& console_;
    QPlainTextEdit* log_;
    QListWidget* list_;
    QLineEdit* input_;
};

}  // namespace tavren
