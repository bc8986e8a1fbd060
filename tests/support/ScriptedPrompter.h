#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <optional>
#include <vector>

#include "core/Prompter.h"

namespace tavren::test {

// A Prompter for tests: answers from a script and records every question it was asked.
class ScriptedPrompter : public Prompter {
  public:
    struct Asked {
        QString kind;  // "message", "yesno", "yesnocancel", "text"
        QString text;
        QString title;
    };

    std::deque<Answer> answers;  // consumed by askYesNo / askYesNoCancel
    // Consumed by askText; a null QString() stands for the user pressing Cancel.
    std::deque<QString> texts;
    std::vector<Asked> asked;

    void message(const QString& text, const QString& title, Icon) override {
        asked.push_back({QStringLiteral("message"), text, title});
    }
    Answer askYesNo(const QString& text, const QString& title) override {
        asked.push_back({QStringLiteral("yesno"), text, title});
        return next(Answer::No);
    }
    Answer askYesNoCancel(const QString& text, const QString& title) override {
        asked.push_back({QStringLiteral("yesnocancel"), text, title});
        return next(Answer::Cancel);
    }
    std::optional<QString> askText(const QString& prompt, const QString& title,
                                   const QString& defaultText) override {
        asked.push_back({QStringLiteral("text"), prompt, title});
        if (texts.empty()) {
            return defaultText;
        }
        const QString text = texts.front();
        texts.pop_front();
        if (text.isNull()) {
            return std::nullopt;
        }
        return text;
    }

  private:
    Answer next(Answer fallback) {
        if (answers.empty()) {
            return fallback;
        }
        const Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

}  // namespace tavren::test
