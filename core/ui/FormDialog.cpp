#include "core/ui/FormDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavren {

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
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(note_);
    layout->addLayout(form_);
    layout->addWidget(problem_);
    layout->addWidget(buttons_);
}

void FormDialog::showProblem(const QString& problem) {
    problem_->setText(problem);
}

QLineEdit* FormDialog::addField(const QString& label, const QString& objectName, bool secret,
                                const QString& text) {
    auto* field = new QLineEdit(text, this);
    field->setObjectName(objectName);
    if (secret) {
        field->setEchoMode(QLineEdit::Password);
    }
    form_->addRow(label, field);
    return field;
}

void FormDialog::setNote(const QString& note) {
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
}

QPushButton* FormDialog::okButton() const {
    return buttons_->button(QDialogButtonBox::Ok);
}

}  // namespace tavren
