#include "pm/ui/PmTab.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "pm/ui/PmInputBox.h"
#include "render/ui/ChatPane.h"

namespace tavren {

PmTab::PmTab(const QString& dataRoot, QWidget* parent) : QWidget(parent) {
    pane_ = new ChatPane(this);
    pane_->setDataRoot(dataRoot);
    pane_->setObjectName(QStringLiteral("WebBrowser1"));
    pane_->setContextMenuPolicy(Qt::CustomContextMenu);
    pane_->setMinimumHeight(120);

    ownStatus_ = new QLabel(this);
    ownStatus_->setObjectName(QStringLiteral("Label2"));
    peerStatus_ = new QLabel(this);
    peerStatus_->setObjectName(QStringLiteral("Label1"));
    peerStatus_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setOwnTyping(TypingStatus::Idle);
    setPeerTyping(TypingStatus::Idle);

    input_ = new PmInputBox(this);
    input_->setObjectName(QStringLiteral("RichTextBox2"));
    smileys_ = new QToolButton(this);
    smileys_->setObjectName(QStringLiteral("smileyButton"));
    smileys_->setText(QStringLiteral(":-)"));
    smileys_->setToolTip(tr("Insert a smiley"));
    send_ = new QPushButton(tr("&Send"), this);
    send_->setObjectName(QStringLiteral("XPButton4"));
    send_->setAutoDefault(false);

    auto* labels = new QHBoxLayout;
    labels->addWidget(ownStatus_);
    labels->addStretch(1);
    labels->addWidget(peerStatus_);

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(send_);
    buttons->addWidget(smileys_, 0, Qt::AlignRight);
    buttons->addStretch(1);
    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_, 1);
    inputRow->addLayout(buttons);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(pane_, 1);
    layout->addLayout(labels);
    layout->addLayout(inputRow);

    connect(input_, &PmInputBox::submitted, this, &PmTab::sendRequested);
    connect(send_, &QPushButton::clicked, this, &PmTab::sendRequested);
    connect(smileys_, &QToolButton::clicked, this, [this] { emit smileyRequested(smileys_); });
    connect(pane_, &QWidget::customContextMenuRequested, this, &PmTab::paneMenuRequested);
    setFocusProxy(input_);
}

void PmTab::setOwnTyping(TypingStatus status) {
    ownStatus_->setText(ownTypingLabel(status));
}

void PmTab::setPeerTyping(TypingStatus status) {
    peerStatus_->setText(peerTypingLabel(status));
}

}  // namespace tavren
