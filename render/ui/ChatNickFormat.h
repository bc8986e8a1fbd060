#pragma once

#include <QDialog>
#include <QString>

#include "render/NicknameFormat.h"

class QCheckBox;
class QFontComboBox;
class QPushButton;
class QSpinBox;

namespace tavren {

class ChatPane;
class ColorSwatch;

// The nickname-format dialog: how the member's own lines look to others (font face, size,
// name and text colours, bold, italic, underline), with a live sample line drawn by the real
// line formatter. "Use My Default Colours" drops the format, so that others see the member in
// their own colours.
class ChatNickFormat : public QDialog {
    Q_OBJECT

  public:
    // `formatText` is the member's current format (empty or unreadable: the defaults are
    // shown). `memberName` names the sample line; `dataRoot` is where its smileys come from
    // (DataRoot::path() unless given).
    ChatNickFormat(const QString& formatText, const QString& memberName, QWidget* parent = nullptr);
    ChatNickFormat(const QString& formatText, const QString& memberName, const QString& dataRoot,
                   QWidget* parent = nullptr);

    // The chosen format as the server keeps it; empty when the member chose to have none.
    QString formatText() const;
    // The format the fields show now.
    NicknameFormat currentFormat() const;
    // The sample line's markup, as others would be shown it.
    QString previewHtml() const;

    static NicknameFormat defaultFormat();

  private:
    void showFormat(const NicknameFormat& format);
    void chooseColor(ColorSwatch* swatch, const QString& title);
    void updatePreview();
    void useDefaultColours();

    QString memberName_;
    QString dataRoot_;
    bool cleared_ = false;
    QFontComboBox* face_;
    QSpinBox* size_;
    ColorSwatch* nameColor_;
    ColorSwatch* textColor_;
    QCheckBox* bold_;
    QCheckBox* italic_;
    QCheckBox* underline_;
    ChatPane* preview_;
    QPushButton* okButton_;
    QPushButton* defaultsButton_;
};

}  // namespace tavren
