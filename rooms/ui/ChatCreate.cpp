#include "rooms/ui/ChatCreate.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/Prompter.h"
#include "rooms/ChannelCreation.h"

namespace tavren {

namespace {
const QString kCreateLabel = QStringLiteral("Create Channel");
}  // namespace

ChatCreate::ChatCreate(ServerLink& link, Prompter& prompter, QWidget* parent)
    : QDialog(parent), creation_(new ChannelCreation(link, this)), prompter_(prompter) {
    setObjectName(QStringLiteral("ChatCreate"));
    setWindowTitle(tr("Create Channel"));

    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("ChanName"));
    name_->setMaxLength(32);
    name_->setPlaceholderText(tr("at least 6 characters"));
    topic_ = new QLineEdit(this);
    topic_->setObjectName(QStringLiteral("ChanTopic"));
    topic_->setMaxLength(200);
    topic_->setPlaceholderText(tr("what the channel is about (may stay empty)"));
    isPass_ = new QCheckBox(tr("&Members join with a password"), this);
    isPass_->setObjectName(QStringLiteral("IsPass"));
    password_ = new QLineEdit(this);
    password_->setObjectName(QStringLiteral("ChanPass"));
    password_->setEchoMode(QLineEdit::Password);
    password_->setMaxLength(32);
    password_->setEnabled(false);
    connect(isPass_, &QCheckBox::toggled, password_, &QWidget::setEnabled);

    auto* form = new QFormLayout;
    form->addRow(tr("Channel &name:"), name_);
    form->addRow(tr("&Topic:"), topic_);
    form->addRow(QString(), isPass_);
    form->addRow(tr("&Password:"), password_);

    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("ProgressBar1"));
    progress_->setRange(0, 100);
    progress_->setTextVisible(false);
    progress_->setVisible(false);
    label_ = new QLabel(kCreateLabel, this);
    label_->setObjectName(QStringLiteral("Label1"));
    // Wide enough for the longest count, so that the bar beside it does not move while it runs.
    label_->setMinimumWidth(
        label_->fontMetrics().horizontalAdvance(QStringLiteral("Creating...(50%)")) + 4);
    createButton_ = new QPushButton(tr("&Create"), this);
    createButton_->setObjectName(QStringLiteral("XPButton1"));
    createButton_->setDefault(true);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("XPButton2"));
    auto* row = new QHBoxLayout;
    row->addWidget(label_);
    row->addWidget(progress_, 1);
    row->addStretch();
    row->addWidget(createButton_);
    row->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(row);
    setMinimumWidth(420);

    connect(createButton_, &QPushButton::clicked, this, &ChatCreate::create);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(creation_, &ChannelCreation::progress, this, [this](int value, const QString& text) {
        progress_->setValue(value);
        label_->setText(text);
    });
    connect(creation_, &ChannelCreation::finished, this, [this] {
        resetProgress();
        name_->clear();
        topic_->clear();
        password_->clear();
        isPass_->setChecked(false);
        accept();
    });
}

ChatCreate::~ChatCreate() = default;

void ChatCreate::resetProgress() {
    progress_->setVisible(false);
    label_->setText(kCreateLabel);
    createButton_->setEnabled(true);
}

void ChatCreate::reject() {
    creation_->cancel();
    resetProgress();
    QDialog::reject();
}

void ChatCreate::create() {
    QString problem;
    if (!creation_->start(name_->text(), topic_->text(), isPass_->isChecked(), password_->text(),
                          &problem)) {
        if (!problem.isEmpty()) {
            prompter_.message(problem, tr("Create Channel"), Prompter::Icon::Warning);
        }
        return;
    }
    createButton_->setEnabled(false);
    progress_->setValue(0);
    progress_->setVisible(true);
}

}  // namespace tavren
