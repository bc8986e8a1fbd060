#pragma once

#include <QFrame>
#include <QString>

namespace tavren {

// A small popup with the 53 smileys in a grid. Each shows its picture from the data root's
// "smiles" folder (its code as text when the file is missing) and tells its code, and the
// emoticon that brings it up where there is one, as a tool tip. A click hands the code on and
// closes the popup.
class SmileyPicker : public QFrame {
    Q_OBJECT

  public:
    static constexpr int Columns = 9;

    explicit SmileyPicker(const QString& dataRoot, QWidget* parent = nullptr);

    // Opens the popup under `anchor`, kept on the anchor's screen.
    void popupBelow(QWidget* anchor);

    // The tool tip of a picture: ";49  :-)" or ";7".
    static QString toolTipFor(int number);

  signals:
    void smileyChosen(const QString& code);
};

}  // namespace tavren
