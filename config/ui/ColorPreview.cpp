#include "config/ui/ColorPreview.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace tavren {

namespace {

QString colorName(const ColorScheme& colors, ColorScheme::Field field) {
    return toQColor(colors.color(field)).name();
}

void setBackground(QFrame* frame, const QString& color) {
    frame->setStyleSheet(
        QStringLiteral("QFrame#%1 { background-color: %2; border: 1px solid #808080; }")
            .arg(frame->objectName(), color));
}

void setTextStyle(QLabel* label, const QString& color, bool bold, bool underline) {
    label->setStyleSheet(
        QStringLiteral("color: %1; font-weight: %2; text-decoration: %3;")
            .arg(color, bold ? QStringLiteral("bold") : QStringLiteral("normal"),
                 underline ? QStringLiteral("underline") : QStringLiteral("none")));
}

QLabel* namedLabel(const QString& name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

}  // namespace

ColorPreview::ColorPreview(QWidget* parent) : QWidget(parent) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);

    titleArea_ = addSurface(new QFrame(this), ColorScheme::TitleBackground, tr("Title background"));
    titleArea_->setObjectName(QStringLiteral("Picture12"));
    titleLabel_ = namedLabel(QStringLiteral("Label26"), QStringLiteral("Title Text"), titleArea_);
    surfaces_.insert(titleLabel_, ColorScheme::TitleText);
    titleLabel_->setToolTip(tr("Title text"));
    auto* titleLayout = new QHBoxLayout(titleArea_);
    titleLayout->setContentsMargins(6, 3, 6, 3);
    titleLayout->addWidget(titleLabel_);
    outer->addWidget(titleArea_);

    bodyArea_ = addSurface(new QFrame(this), ColorScheme::BodyBackground, tr("Body background"));
    bodyArea_->setObjectName(QStringLiteral("Picture3"));
    auto* body = new QVBoxLayout(bodyArea_);
    body->setContentsMargins(6, 4, 6, 4);
    bodyLabel_ =
        namedLabel(QStringLiteral("Label27"), QStringLiteral("[Text Body Field]"), bodyArea_);
    surfaces_.insert(bodyLabel_, ColorScheme::BodyText);
    bodyLabel_->setToolTip(tr("Body text"));
    body->addWidget(bodyLabel_);

    chatPane_ = addSurface(new QFrame(bodyArea_), ColorScheme::ChatPane, tr("Chat pane"));
    chatPane_->setObjectName(QStringLiteral("RichTextBox1"));
    auto* lines = new QGridLayout(chatPane_);
    lines->setContentsMargins(6, 4, 6, 4);
    lines->setHorizontalSpacing(4);
    theirNick_ =
        addChatLine(lines, 0, QStringLiteral("Their_nick:"), tr("Hi everyone!"), &theirText_);
    hostNick_ = addChatLine(lines, 1, QStringLiteral("ChanHost:"), tr("Welcome to the channel."),
                            &hostText_);
    ownNick_ = addChatLine(lines, 2, QStringLiteral("Your_nick:"), tr("Hello there."), &ownText_);
    lines->setColumnStretch(1, 1);
    body->addWidget(chatPane_, 1);

    sendBox_ = addSurface(new QFrame(bodyArea_), ColorScheme::SendBox, tr("Message box"));
    sendBox_->setObjectName(QStringLiteral("RichTextBox2"));
    sendBox_->setMinimumHeight(24);
    body->addWidget(sendBox_);
    outer->addWidget(bodyArea_, 1);

    entryArea_ = addSurface(new QFrame(this), ColorScheme::EntryBackground, tr("Entry background"));
    entryArea_->setObjectName(QStringLiteral("Picture13"));
    auto* entry = new QHBoxLayout(entryArea_);
    entry->setContentsMargins(6, 3, 6, 3);
    entryLine_ = namedLabel(QStringLiteral("Text6"), QStringLiteral("Text Enter Area"), entryArea_);
    entryLine_->setToolTip(tr("Entry line"));
    surfaces_.insert(entryLine_, ColorScheme::EntryLine);
    entryLine_->installEventFilter(this);
    entry->addWidget(entryLine_, 1);
    outer->addWidget(entryArea_);

    titleLabel_->installEventFilter(this);
    bodyLabel_->installEventFilter(this);
    setCursor(Qt::PointingHandCursor);
}

QFrame* ColorPreview::addSurface(QFrame* frame, ColorScheme::Field field, const QString& tip) {
    surfaces_.insert(frame, field);
    frame->setToolTip(tip);
    frame->installEventFilter(this);
    return frame;
}

QLabel* ColorPreview::addChatLine(QGridLayout* grid, int row, const QString& nick,
                                  const QString& message, QLabel** messageLabel) {
    auto* nickLabel = new QLabel(nick, chatPane_);
    *messageLabel = new QLabel(message, chatPane_);
    // Clicks on a line colour the pane behind it.
    nickLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    (*messageLabel)->setAttribute(Qt::WA_TransparentForMouseEvents);
    grid->addWidget(nickLabel, row, 0);
    grid->addWidget(*messageLabel, row, 1);
    return nickLabel;
}

void ColorPreview::setPreview(const ColorScheme& colors, bool boldNames, bool underlineNames,
                              const QString& title) {
    using F = ColorScheme;
    setBackground(titleArea_, colorName(colors, F::TitleBackground));
    setBackground(bodyArea_, colorName(colors, F::BodyBackground));
    setBackground(chatPane_, colorName(colors, F::ChatPane));
    setBackground(sendBox_, colorName(colors, F::SendBox));
    setBackground(entryArea_, colorName(colors, F::EntryBackground));
    titleLabel_->setText(title.isEmpty() ? QStringLiteral("Title Text") : title);
    setTextStyle(titleLabel_, colorName(colors, F::TitleText), true, false);
    setTextStyle(bodyLabel_, colorName(colors, F::BodyText), false, false);
    entryLine_->setStyleSheet(
        QStringLiteral("background-color: %1; border: 1px solid #808080; padding: 2px;")
            .arg(colorName(colors, F::EntryLine)));

    setTextStyle(theirNick_, colorName(colors, F::TheirNick), boldNames, underlineNames);
    setTextStyle(theirText_, colorName(colors, F::TheirText), false, false);
    setTextStyle(hostNick_, colorName(colors, F::HostNick), boldNames, underlineNames);
    setTextStyle(hostText_, colorName(colors, F::HostText), false, false);
    setTextStyle(ownNick_, colorName(colors, F::OwnNick), boldNames, underlineNames);
    setTextStyle(ownText_, colorName(colors, F::OwnText), false, false);
}

bool ColorPreview::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        const auto found = surfaces_.constFind(watched);
        if (found != surfaces_.cend()) {
            emit surfaceClicked(found.value());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tavren
