#include "config/ui/SoundFileBox.h"

#include <QFileInfo>
#include <QStyleOptionComboBox>
#include <QStylePainter>

#include "config/SoundSlots.h"

namespace tavren {

SoundFileBox::SoundFileBox(QWidget* parent) : QComboBox(parent) {
    addItem(SoundSlots::chooseFileText());
    addItem(SoundSlots::disabledText());
    setItemData(kDisabledIndex, QStringLiteral("No sound for this event"), Qt::ToolTipRole);
    // Sized by a typical file name rather than by the longest path ever chosen.
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    setCurrentIndex(-1);
    connect(this, &QComboBox::currentIndexChanged, this, &SoundFileBox::onIndexChanged);
}

QString SoundFileBox::shownName(const QString& value) {
    if (value == SoundSlots::disabledText()) {
        return value;
    }
    const QString name = QFileInfo(value).fileName();
    return name.isEmpty() ? value : name;
}

void SoundFileBox::setValue(const QString& value) {
    value_ = value;
    showValue();
    emit valueChanged(value_);
}

void SoundFileBox::showValue() {
    const QSignalBlocker blocker(this);
    while (count() > kFileIndex) {
        removeItem(count() - 1);
    }
    if (value_ == SoundSlots::disabledText()) {
        setCurrentIndex(kDisabledIndex);
        setToolTip(itemData(kDisabledIndex, Qt::ToolTipRole).toString());
        return;
    }
    if (value_.isEmpty()) {
        setCurrentIndex(-1);
        setToolTip(QString());
        return;
    }
    addItem(shownName(value_), value_);
    setItemData(kFileIndex, value_, Qt::ToolTipRole);
    setCurrentIndex(kFileIndex);
    setToolTip(value_);
}

void SoundFileBox::onIndexChanged(int index) {
    // The file stays in the list while the slot is switched off, so it is one pick away.
    if (index == kDisabledIndex) {
        value_ = SoundSlots::disabledText();
    } else if (index == kFileIndex) {
        value_ = itemData(kFileIndex).toString();
    } else {
        // "*Choose File*" changes nothing by itself: the chooser answers with setValue().
        return;
    }
    setToolTip(itemData(index, Qt::ToolTipRole).toString());
    emit valueChanged(value_);
}

void SoundFileBox::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    // The end of a name (".wav", a number) tells files apart as much as its start does.
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideMiddle, field.width() - 4);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

}  // namespace tavren
