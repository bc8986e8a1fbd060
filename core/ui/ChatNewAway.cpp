#include "core/ui/ChatNewAway.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/AwayStatus.h"

namespace tavren {

ChatNewAway::ChatNewAway(AwayStatus& status, AwayMessages& saved, Prompter& prompter,
                         QWidget* parent)
    : QDialog(parent),
      status_(status),
      saved_(saved),
      prompter_(prompter),
      name_(new QLineEdit(this)),
      text_(new QLineEdit(this)),
      keep_(new QCheckBox(QStringLiteral("&Keep this message in my away list"), this)) {
    setObjectName(QStringLiteral("ChatNewAway"));
    setWindowTitle(QStringLiteral("New Away Message"));
    name_->setObjectName(QStringLiteral("Text1"));
    name_->setMaxLength(60);
    name_->setPlaceholderText(QStringLiteral("Lunch break.."));
    text_->setObjectName(QStringLiteral("Text2"));
    text_->setMaxLength(400);
    text_->setPlaceholderText(QStringLiteral("What others are told while you are away"));
    keep_->setObjectName(QStringLiteral("Check1"));
    keep_->setChecked(true);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Name:"), name_);
    form->addRow(QStringLiteral("&Message:"), text_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &ChatNewAway::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(keep_);
    layout->addWidget(buttons);
    setMinimumWidth(380);
    // Both fields start empty; typing goes to the first.
    name_->setFocus(Qt::OtherFocusReason);
}

void ChatNewAway::accept() {
    // A missing field keeps the dialog open, with the reason said.
    if (status_.goAwayWithNew(name_->text(), text_->text(), keep_->isChecked(), saved_,
                              prompter_)) {
        QDialog::accept();
    }
}

}  // namespace tavren
