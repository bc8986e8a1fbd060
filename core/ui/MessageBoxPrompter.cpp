#include "core/ui/MessageBoxPrompter.h"

#include <algorithm>

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

// Texts here often carry what a server or another member wrote; a message box would render
// text that looks like markup as rich text (links, pictures, layout), so every box shows its text
// exactly as written.
Prompter::Answer askPlain(QWidget* parent, const QString& text, const QString& title,
                          QMessageBox::StandardButtons buttons) {
    QMessageBox box(QMessageBox::Question, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Yes);
    return toAnswer(box.exec());
}

}  // namespace

QMessageBox* MessageBoxPrompter::openMessage(const QString& title) const {
    return open_.value(title);
}

void MessageBoxPrompter::message(const QString& text, const QString& title, Icon icon) {
    if (QMessageBox* shown = open_.value(title)) {
        shown->setIcon(toBoxIcon(icon));
        shown->setTextFormat(Qt::PlainText);
        shown->setText(text);
        shown->raise();
        return;
    }
    auto* box = new QMessageBox(toBoxIcon(icon), title, QString(), QMessageBox::Ok, parent_);
    box->setTextFormat(Qt::PlainText);
    box->setText(text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->setWindowModality(Qt::NonModal);
    open_.insert(title, box);
    box->show();
}

Prompter::Answer MessageBoxPrompter::askYesNo(const QString& text, const QString& title) {
    return askPlain(parent_, text, title, QMessageBox::Yes | QMessageBox::No);
}

Prompter::Answer MessageBoxPrompter::askYesNoCancel(const QString& text, const QString& title) {
    return askPlain(parent_, text, title, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
}

void MessageBoxPrompter::askYesNoLater(const QString& text, const QString& title,
                                       std::function<void(Answer)> answered) {
    askLater(text, title, QMessageBox::Yes | QMessageBox::No, QMessageBox::No, std::move(answered));
}

void MessageBoxPrompter::askYesNoCancelLater(const QString& text, const QString& title,
                                             std::function<void(Answer)> answered) {
    askLater(text, title, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
             QMessageBox::Yes, std::move(answered));
}

void MessageBoxPrompter::askLater(const QString& text, const QString& title,
                                  QMessageBox::StandardButtons buttons,
                                  QMessageBox::StandardButton defaultButton,
                                  std::function<void(Answer)> answered) {
    auto* box = new QMessageBox(QMessageBox::Question, title, QString(), buttons, parent_);
    box->setTextFormat(Qt::PlainText);
    box->setText(text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setDefaultButton(defaultButton);
    QObject::connect(box, &QMessageBox::finished, box, [box, answered = std::move(answered)](int) {
        answered(toAnswer(box->standardButton(box->clickedButton())));
    });
    box->open();
}

std::optional<QString> MessageBoxPrompter::askText(const QString& prompt, const QString& title,
                                                   const QString& defaultText) {
    QInputDialog dialog(parent_);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setTextValue(defaultText);
    // Wide enough for the title bar to show the whole title and for a name to be read whole.
    dialog.setMinimumWidth(std::max(320, dialog.fontMetrics().horizontalAdvance(title) + 160));
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.textValue();
}

}  // namespace tavren
