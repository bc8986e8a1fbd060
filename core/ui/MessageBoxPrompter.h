#pragma once

#include "core/Prompter.h"

class QWidget;

namespace tavren {

// Answers the session layer's questions with modal message and input boxes.
class MessageBoxPrompter : public Prompter {
  public:
    explicit MessageBoxPrompter(QWidget* parent = nullptr) : parent_(parent) {}

    void message(const QString& text, const QString& title, Icon icon) override;
    Answer askYesNo(const QString& text, const QString& title) override;
    Answer askYesNoCancel(const QString& text, const QString& title) override;
    std::optional<QString> askText(const QString& prompt, const QString& title,
                                   const QString& defaultText) override;

  private:
    QWidget* parent_;
};

}  // namespace tavren
