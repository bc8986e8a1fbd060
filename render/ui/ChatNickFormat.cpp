#include "render/ui/ChatNickFormat.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "config/ColorScheme.h"
#include "config/ui/ColorSwatch.h"
#include "core/DataRoot.h"
#include "render/ChatLineFormatter.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"

namespace tavren {

ChatNickFormat::ChatNickFormat(const QString& formatText, const QString& memberName,
                               QWidget* parent)
    : ChatNickFormat(formatText, memberName, DataRoot::path(), parent) {}

ChatNickFormat::ChatNickFormat(const QString& formatText, const QString& memberName,
                               const QString& dataRoot, QWidget* parent)
    : QDialog(parent),
      memberName_(memberName),
      dataRoot_(dataRoot),
      face_(new QFontComboBox(this)),
      size_(new QSpinBox(this)),
      nameColor_(new ColorSwatch(this)),
      textColor_(new ColorSwatch(this)),
      bold_(new QCheckBox(tr("&Bold"), this)),
      italic_(new QCheckBox(tr("&Italic"), this)),
      underline_(new QCheckBox(tr("&Underline"), this)),
      preview_(new ChatPane(this)),
      okButton_(new QPushButton(tr("OK"), this)),
      defaultsButton_(new QPushButton(tr("Use My &Default Colours"), this)) {
    setWindowTitle(tr("Nickname Format"));

    // Not editable: Enter then reaches the dialog's default button instead of the combo box.
    face_->setEditable(false);
    size_->setRange(NicknameFormat::MinSize, NicknameFormat::MaxSize);
    preview_->setDataRoot(dataRoot);
    preview_->setMinimumHeight(fontMetrics().height() * 4);
    preview_->setFocusPolicy(Qt::NoFocus);

    auto* form = new QFormLayout;
    form->addRow(tr("&Font:"), face_);
    form->addRow(tr("&Size (1-7):"), size_);
    auto* nameLabel = new QLabel(tr("&Name colour:"), this);
    nameLabel->setBuddy(nameColor_);
    form->addRow(nameLabel, nameColor_);
    auto* textLabel = new QLabel(tr("&Text colour:"), this);
    textLabel->setBuddy(textColor_);
    form->addRow(textLabel, textColor_);
    auto* styles = new QHBoxLayout;
    styles->addWidget(bold_);
    styles->addWidget(italic_);
    styles->addWidget(underline_);
    styles->addStretch();
    form->addRow(QString(), styles);

    auto* buttons = new QDialogButtonBox(this);
    okButton_->setDefault(true);
    buttons->addButton(okButton_, QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->addButton(defaultsButton_, QDialogButtonBox::ResetRole);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(new QLabel(tr("Others will see your lines like this:"), this));
    layout->addWidget(preview_, 1);
    layout->addWidget(buttons);
    // Whatever the font and scale, the dialog never shrinks below what its contents need.
    layout->setSizeConstraint(QLayout::SetMinimumSize);

    showFormat(NicknameFormat::parse(formatText).value_or(defaultFormat()));

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(defaultsButton_, &QPushButton::clicked, this, &ChatNickFormat::useDefaultColours);
    connect(nameColor_, &ColorSwatch::clicked, this,
            [this] { chooseColor(nameColor_, tr("Name Colour")); });
    connect(textColor_, &ColorSwatch::clicked, this,
            [this] { chooseColor(textColor_, tr("Text Colour")); });
    connect(face_, &QFontComboBox::currentFontChanged, this, &ChatNickFormat::updatePreview);
    connect(size_, &QSpinBox::valueChanged, this, &ChatNickFormat::updatePreview);
    for (QCheckBox* box : {bold_, italic_, underline_}) {
        connect(box, &QCheckBox::toggled, this, &ChatNickFormat::updatePreview);
    }
    updatePreview();
    face_->setFocus();
}

NicknameFormat ChatNickFormat::defaultFormat() {
    const ColorScheme colors = ColorScheme::defaults();
    NicknameFormat format;
    format.nameColor = colors.color(ColorScheme::OwnNick) & 0xFFFFFF;
    format.textColor = colors.color(ColorScheme::OwnText) & 0xFFFFFF;
    format.face = QStringLiteral("Arial");
    return format;
}

void ChatNickFormat::showFormat(const NicknameFormat& format) {
    const QSignalBlocker blockFace(face_);
    const QSignalBlocker blockSize(size_);
    if (!format.face.isEmpty()) {
        face_->setCurrentFont(QFont(format.face));
    }
    size_->setValue(format.size);
    nameColor_->setColor(format.nameColor);
    textColor_->setColor(format.textColor);
    bold_->setChecked(format.bold);
    italic_->setChecked(format.italic);
    underline_->setChecked(format.underline);
}

NicknameFormat ChatNickFormat::currentFormat() const {
    NicknameFormat format;
    format.nameColor = nameColor_->color() & 0xFFFFFF;
    format.textColor = textColor_->color() & 0xFFFFFF;
    format.bold = bold_->isChecked();
    format.italic = italic_->isChecked();
    format.underline = underline_->isChecked();
    format.size = size_->value();
    // A family name that could not travel in a format is left out rather than sent broken.
    const QString face = face_->currentFont().family();
    format.face = NicknameFormat::isAcceptableFace(face) ? face : QString();
    return format;
}

QString ChatNickFormat::formatText() const {
    return cleared_ ? QString() : currentFormat().toText();
}

void ChatNickFormat::chooseColor(ColorSwatch* swatch, const QString& title) {
    const QColor chosen = QColorDialog::getColor(toQColor(swatch->color()), this, title);
    if (chosen.isValid()) {
        swatch->setColor(fromQColor(chosen));
        updatePreview();
    }
}

QString ChatNickFormat::previewHtml() const {
    const NicknameFormat format = currentFormat();
    LineOptions options;
    options.dataRoot = dataRoot_;
    options.timestamp = false;
    const ChatLineFormatter formatter(options);
    QString text = tr("Hello everyone :-)");
    return formatter.formatLine(ChatLineFormatter::Variant::Room, memberName_ + QLatin1Char(':'),
                                text, format.nameColor, format.textColor, format.bold, format.size,
                                format.textStyle());
}

void ChatNickFormat::updatePreview() {
    ResetChatPane(*preview_, 0xFFFFFF);
    preview_->AddChat(previewHtml());
    preview_->flush();
}

void ChatNickFormat::useDefaultColours() {
    cleared_ = true;
    accept();
}

}  // namespace tavren
