#include "render/ui/SmileyPicker.h"

#include <QGridLayout>
#include <QPixmap>
#include <QScreen>
#include <QToolButton>

#include "render/SmileyCodes.h"
#include "render/SmileyFiles.h"

namespace tavren {

SmileyPicker::SmileyPicker(const QString& dataRoot, QWidget* parent) : QFrame(parent, Qt::Popup) {
    setFrameShape(QFrame::StyledPanel);
    setAttribute(Qt::WA_DeleteOnClose, false);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 4, 4, 4);
    grid->setSpacing(2);
    const SmileyFiles files(dataRoot);
    for (int number = SmileyCodes::First; number <= SmileyCodes::Last; ++number) {
        const QString code = SmileyCodes::numberedCode(number);
        auto* button = new QToolButton(this);
        button->setAutoRaise(true);
        button->setObjectName(QStringLiteral("smiley") + QString::number(number));
        const QPixmap picture(files.pictureFile(number));
        if (picture.isNull()) {
            button->setText(code);
        } else {
            button->setIcon(QIcon(picture));
            button->setIconSize(picture.deviceIndependentSize().toSize());
        }
        button->setToolTip(toolTipFor(number));
        button->setAccessibleName(toolTipFor(number));
        connect(button, &QToolButton::clicked, this, [this, code] {
            close();
            emit smileyChosen(code);
        });
        const int index = number - SmileyCodes::First;
        grid->addWidget(button, index / Columns, index % Columns);
    }
}

QString SmileyPicker::toolTipFor(int number) {
    const QString emoticon = SmileyCodes::emoticonFor(number);
    return emoticon.isEmpty() ? SmileyCodes::numberedCode(number)
                              : SmileyCodes::numberedCode(number) + QStringLiteral("  ") + emoticon;
}

void SmileyPicker::popupBelow(QWidget* anchor) {
    adjustSize();
    QPoint place = anchor->mapToGlobal(QPoint(0, anchor->height()));
    const QScreen* screen = anchor->screen();
    if (screen != nullptr) {
        const QRect area = screen->availableGeometry();
        // Above the anchor when there is no room below; never past the screen's edges.
        if (place.y() + height() > area.bottom()) {
            place.setY(anchor->mapToGlobal(QPoint(0, 0)).y() - height());
        }
        place.setX(qBound(area.left(), place.x(), qMax(area.left(), area.right() - width())));
        place.setY(qBound(area.top(), place.y(), qMax(area.top(), area.bottom() - height())));
    }
    move(place);
    show();
    activateWindow();
}

}  // namespace tavren
