#include "core/ui/MessageBoxPrompter.h"

#include <QInputDialog>
#include <QMessageBox>

namespace tavren {

namespace {

QMessageBox::Icon toBoxIcon(Prompter::Icon icon) {
    switch (icon) {
        case Prompter::Icon::Information:
            return QMessageBox::Information;
        case Prompter::Icon::Warning:
            return QMessageBox::Warning;
        case Prompter::Icon::Critical:
            return QMessageBox::Critical;
        case Prompter::Icon::Question:
            return QMessageBox::Question;
        case Prompter::Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

Prompter::Answer toAnswer(int button) {
    if (button == QMessageBox::Yes) {
        return Prompter::Answer::Yes;
    }
    if (button == QMessageBox::No) {
        return Prompter::Answer::No;
    }
    return Prompter::Answer::Cancel;
}

}  // namespace

void MessageBoxPrompter::message(const QString& text, const QString& title, Icon icon) {
    QMessageBox box(toBoxIcon(icon), title, text, QMessageBox::Ok, parent_);
    box.exec();
}

Prompter::Answer MessageBoxPrompter::askYesNo(const QString& text, const QString& title) {
    return toAnswer(QMessageBox::question(parent_, title, text, QMessageBox::Yes | QMessageBox::No,
                                          QMessageBox::Yes));
}

Prompter::Answer MessageBoxPrompter::askYesNoCancel(const QString& text, const QString& title) {
    return toAnswer(QMessageBox::question(parent_, title, text,
                                          QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                                          QMessageBox::Yes));
}

std::optional<QString> MessageBoxPrompter::askText(const QString& prompt, const QString& title,
                                                   const QString& defaultText) {
    bool accepted = false;
    const QString text =
        QInputDialog::getText(parent_, title, prompt, QLineEdit::Normal, defaultText, &accepted);
    if (!accepted) {
        return std::nullopt;
    }
    return text;
}

}  // namespace tavren
