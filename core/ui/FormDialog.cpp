#include "core/ui/FormDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavren {

namespace {
// Wide enough that the window manager shows the longest of the dialogs' titles whole.
constexpr int kMinimumWidth = 380;
}  // namespace

FormDialog::FormDialog(const QString& objectName, const QString& title, QWidget* parent)
    : QDialog(parent),
      note_(new QLabel(this)),
      form_(new QFormLayout),
      problem_(new QLabel(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setObjectName(objectName);
    setWindowTitle(title);
    note_->setWordWrap(true);
    note_->hide();
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));
    problem_->setWordWrap(true);
    // Takes room only when there is something to say.
    problem_->hide();
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    okButton()->setDefault(true);
    setMinimumWidth(kMinimumWidth);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(note_);
    layout->addLayout(form_);
    layout->addWidget(problem_);
    layout->addWidget(buttons_);
}

void FormDialog::showProblem(const QString& problem) {
    problem_->setText(problem);
    problem_->setVisible(!problem.isEmpty());
}

QLineEdit* FormDialog::addField(const QString& label, const QString& objectName, bool secret,
                                const QString& text) {
    auto* field = new QLineEdit(text, this);
    field->setObjectName(objectName);
    if (secret) {
        field->setEchoMode(QLineEdit::Password);
    }
    form_->addRow(label, field);
    fields_ << field;
    inputs_ << field;
    return field;
}

void FormDialog::addRow(const QString& label, QWidget* input) {
    form_->addRow(label, input);
    inputs_ << input;
}

void FormDialog::setNote(const QString& note) {
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
}

QPushButton* FormDialog::okButton() const {
    return buttons_->button(QDialogButtonBox::Ok);
}

void FormDialog::showEvent(QShowEvent* event) {
    orderTabs();
    focusFirstEmptyField();
    QDialog::showEvent(event);
}

void FormDialog::orderTabs() {
    // The buttons are made before the subclass adds its fields, so by creation order they would
    // come first and take the focus.
    QWidget* previous = nullptr;
    for (QWidget* input : inputs_) {
        if (previous != nullptr) {
            setTabOrder(previous, input);
        }
        previous = input;
    }
    QPushButton* cancel = buttons_->button(QDialogButtonBox::Cancel);
    if (previous != nullptr) {
        setTabOrder(previous, okButton());
    }
    setTabOrder(okButton(), cancel);
}

void FormDialog::focusFirstEmptyField() {
    for (QLineEdit* field : fields_) {
        if (field->isEnabled() && field->text().isEmpty()) {
            field->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    // Everything is filled in (an account being changed, a sign-up the server refused): start
    // at the top with the text selected, so typing replaces it.
    if (!fields_.isEmpty()) {
        fields_.first()->setFocus(Qt::OtherFocusReason);
        fields_.first()->selectAll();
    }
}

}  // namespace tavren
