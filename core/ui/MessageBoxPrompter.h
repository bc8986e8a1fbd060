#pragma once

#include <QHash>
#include <QMessageBox>
#include <QPointer>

#include "core/Prompter.h"

class QWidget;

namespace tavren {

// Answers the session layer's questions with message and input boxes. Messages and the
// deferred questions are shown without a nested event loop (the box opens and the call
// returns), so the server link keeps cutting frames and answering pings while a box is up.
// Questions that must be answered before the caller can go on stay modal.
class MessageBoxPrompter : public Prompter {
  public:
    explicit MessageBoxPrompter(QWidget* parent = nullptr) : parent_(parent) {}

    void message(const QString& text, const QString& title, Icon icon) override;
    Answer askYesNo(const QString& text, const QString& title) override;
    Answer askYesNoCancel(const QString& text, const QString& title) override;
    void askYesNoLater(const QString& text, const QString& title,
                       std::function<void(Answer)> answered) override;
    void askYesNoCancelLater(const QString& text, const QString& title,
                             std::function<void(Answer)> answered) override;
    std::optional<QString> askText(const QString& prompt, const QString& title,
                                   const QString& defaultText) override;

    // The message box open under a title, if any (for tests).
    QMessageBox* openMessage(const QString& title) const;

  private:
    void askLater(const QString& text, const QString& title, QMessageBox::StandardButtons buttons,
                  QMessageBox::StandardButton defaultButton, std::function<void(Answer)> answered);

    QWidget* parent_;
    // One box per title: a message arriving while one with the same title is still open
    // replaces its text instead of stacking another box on top (a server repeating a notice
    // cannot bury the screen in boxes).
    QHash<QString, QPointer<QMessageBox>> open_;
};

}  // namespace tavren
