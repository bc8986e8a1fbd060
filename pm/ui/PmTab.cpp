#include "pm/ui/PmTab.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "pm/DirectLink.h"
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

    directLink_ = new QLabel(this);
    directLink_->setObjectName(QStringLiteral("directLink"));
    directLink_->setTextFormat(Qt::RichText);
    directLink_->setTextInteractionFlags(Qt::LinksAccessibleByMouse |
                                         Qt::LinksAccessibleByKeyboard);
    transfer_ = new QPushButton(this);
    transfer_->setObjectName(QStringLiteral("XPButton6"));
    transfer_->setAutoDefault(false);
    picture_ = new QPushButton(tr("Picture"), this);
    picture_->setObjectName(QStringLiteral("XPButton7"));
    picture_->setToolTip(tr("Send a picture over a direct connection"));
    picture_->setAutoDefault(false);
    capture_ = new QPushButton(tr("Capture"), this);
    capture_->setObjectName(QStringLiteral("XPButton8"));
    capture_->setToolTip(tr("Send a part of your screen over a direct connection"));
    capture_->setAutoDefault(false);
    // Wide enough for the longest caption, so the row does not jump as the caption changes.
    int widest = 0;
    for (const char* caption : {"Send File", "*Accept*", "Accepting", "Sending..", "Aborting.."}) {
        widest = qMax(widest, transfer_->fontMetrics().horizontalAdvance(QLatin1String(caption)));
    }
    transfer_->setMinimumWidth(widest + 24);
    outProgress_ = new QProgressBar(this);
    outProgress_->setObjectName(QStringLiteral("OutProgress"));
    outLabel_ = new QLabel(this);
    outLabel_->setObjectName(QStringLiteral("OutLabel"));
    inProgress_ = new QProgressBar(this);
    inProgress_->setObjectName(QStringLiteral("InProgress"));
    inLabel_ = new QLabel(this);
    inLabel_->setObjectName(QStringLiteral("InLabel"));
    // The labels grow with the numbers; the window's width must not.
    for (QLabel* label : {outLabel_, inLabel_}) {
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    for (QProgressBar* bar : {outProgress_, inProgress_}) {
        bar->setRange(0, kProgressSteps);
        bar->setTextVisible(false);
        bar->setMaximumHeight(fontMetrics().height());
    }
    auto* direct = new QHBoxLayout;
    direct->addWidget(directLink_);
    direct->addStretch(1);
    direct->addWidget(transfer_);
    direct->addWidget(picture_);
    direct->addWidget(capture_);
    auto* outRow = new QHBoxLayout;
    outRow->addWidget(outProgress_, 1);
    outRow->addWidget(outLabel_, 2);
    auto* inRow = new QHBoxLayout;
    inRow->addWidget(inProgress_, 1);
    inRow->addWidget(inLabel_, 2);

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
    layout->addLayout(direct);
    layout->addLayout(outRow);
    layout->addLayout(inRow);
    layout->addLayout(labels);
    layout->addLayout(inputRow);

    connect(input_, &PmInputBox::submitted, this, &PmTab::sendRequested);
    connect(send_, &QPushButton::clicked, this, &PmTab::sendRequested);
    connect(smileys_, &QToolButton::clicked, this, [this] { emit smileyRequested(smileys_); });
    connect(pane_, &QWidget::customContextMenuRequested, this, &PmTab::paneMenuRequested);
    connect(directLink_, &QLabel::linkActivated, this, &PmTab::directLinkClicked);
    connect(transfer_, &QPushButton::clicked, this, &PmTab::transferButtonClicked);
    connect(picture_, &QPushButton::clicked, this, &PmTab::pictureRequested);
    connect(capture_, &QPushButton::clicked, this, &PmTab::captureRequested);
    setFocusProxy(input_);
    showLink(nullptr);
    showProgress(nullptr);
}

void PmTab::showLink(const DirectLink* link) {
    const QString text =
        link != nullptr ? link->linkText() : QStringLiteral("- Connect to Send Files/Pictures..");
    const bool clickable = link == nullptr || link->state() != DirectLink::State::Accepting;
    directLink_->setText(clickable ? QStringLiteral("<a href=\"direct\">") + text.toHtmlEscaped() +
                                         QStringLiteral("</a>")
                                   : text.toHtmlEscaped());
    transfer_->setText(link != nullptr ? link->buttonCaption() : QStringLiteral("Send File"));
    transfer_->setToolTip(link != nullptr ? link->buttonToolTip()
                                          : tr("Send a file over a direct connection"));
    transfer_->setEnabled(link == nullptr || link->state() != DirectLink::State::Accepting);
    const bool busy = link != nullptr && link->sending();
    picture_->setEnabled(!busy);
    capture_->setEnabled(!busy);
}

void PmTab::showProgress(const DirectLink* link) {
    const auto show = [](QProgressBar* bar, QLabel* label, const TransferProgress* progress,
                         const QString& text, bool active) {
        bar->setVisible(active);
        label->setVisible(active);
        if (!active || progress == nullptr) {
            return;
        }
        const qint64 total = progress->total();
        bar->setValue(total > 0 ? static_cast<int>(progress->done() * kProgressSteps / total) : 0);
        label->setText(text);
    };
    const bool out = link != nullptr && (link->sending() || !link->outgoingLabel().isEmpty());
    const bool in = link != nullptr && (link->receiving() || !link->incomingLabel().isEmpty());
    show(outProgress_, outLabel_, link != nullptr ? &link->outgoing() : nullptr,
         link != nullptr ? link->outgoingLabel() : QString(), out);
    show(inProgress_, inLabel_, link != nullptr ? &link->incoming() : nullptr,
         link != nullptr ? link->incomingLabel() : QString(), in);
}

void PmTab::setOwnTyping(TypingStatus status) {
    ownStatus_->setText(ownTypingLabel(status));
}

void PmTab::setPeerTyping(TypingStatus status) {
    peerStatus_->setText(peerTypingLabel(status));
}

}  // namespace tavren
