#pragma once

#include <QString>
#include <optional>

namespace tavren {

// Questions and messages to the user. Session code asks through this interface; the windows
// answer with real message boxes, tests with a scripted fake, so dialog flows run headless.
class Prompter {
  public:
    enum class Answer { Yes, No, Cancel };
    enum class Icon { None, Information, Warning, Critical, Question };

    virtual ~Prompter() = default;

    virtual void message(const QString& text, const QString& title, Icon icon = Icon::None) = 0;
    virtual Answer askYesNo(const QString& text, const QString& title) = 0;
    virtual Answer askYesNoCancel(const QString& text, const QString& title) = 0;
    // The typed text, or nothing when the user cancels.
    virtual std::optional<QString> askText(const QString& prompt, const QString& title,
                                           const QString& defaultText) = 0;
};

}  // namespace tavren
