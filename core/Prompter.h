#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace tavren {

// Questions and messages to the user. Session code asks through this interface; the windows
// answer with real message boxes, tests with a scripted fake, so dialog flows run headless.
class Prompter {
  public:
    enum class Answer { Yes, No, Cancel };
    enum class Icon { None, Information, Warning, Critical, Question };

    virtual ~Prompter() = default;

    // Shows a message and returns at once: a message must never hold up the caller, which may
    // be handling a frame from the server while the user reads.
    virtual void message(const QString& text, const QString& title, Icon icon = Icon::None) = 0;
    virtual Answer askYesNo(const QString& text, const QString& title) = 0;
    virtual Answer askYesNoCancel(const QString& text, const QString& title) = 0;
    // The typed text, or nothing when the user cancels.
    // The same question without waiting: `answered` runs once the user has chosen. Code that
    // handles a frame from the server asks this way, so that the link goes on meanwhile.
    // Prompters that answer at once (tests) may call `answered` before returning.
    virtual void askYesNoCancelLater(const QString& text, const QString& title,
                                     std::function<void(Answer)> answered) {
        answered(askYesNoCancel(text, title));
    }
    // A yes-or-no question the same way; "No" is the default button.
    virtual void askYesNoLater(const QString& text, const QString& title,
                               std::function<void(Answer)> answered) {
        answered(askYesNo(text, title));
    }
    virtual std::optional<QString> askText(const QString& prompt, const QString& title,
                                           const QString& defaultText) = 0;
};

}  // namespace tavren
