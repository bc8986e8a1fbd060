#pragma once

#include <QDialog>
#include <QList>

class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tavren {

// The account dialogs' common shape: an optional note, labelled text fields, a line in red that
// says what is wrong, and OK/Cancel. OK stays in the dialog until the subclass's accept() finds
// the fields good; a problem is shown inside the dialog rather than in a box of its own.
// Each time it is shown the typing goes to the first empty field (or the first field, selected,
// when all are filled), Tab walks the fields top to bottom and then OK and Cancel, and Enter
// presses OK: that is safe because OK only checks and says what is missing.
class FormDialog : public QDialog {
    Q_OBJECT
  public:
    void showProblem(const QString& problem);
    // The red line under the form (for tests).
    QLabel* problem() const { return problem_; }

  protected:
    FormDialog(const QString& objectName, const QString& title, QWidget* parent);

    // A line edit in a new row of the form; `secret` hides what is typed.
    QLineEdit* addField(const QString& label, const QString& objectName, bool secret = false,
                        const QString& text = QString());
    // Any other input in a new row (a number box, a list); it takes its place in the Tab order
    // but is not one of the fields the typing goes to first.
    void addRow(const QString& label, QWidget* input);
    // A sentence above the form.
    void setNote(const QString& note);
    QPushButton* okButton() const;

    void showEvent(QShowEvent* event) override;

  private:
    void orderTabs();
    void focusFirstEmptyField();

    QLabel* note_;
    QFormLayout* form_;
    QLabel* problem_;
    QDialogButtonBox* buttons_;
    QList<QLineEdit*> fields_;
    QList<QWidget*> inputs_;  // every row's input, top to bottom, the fields among them
};

}  // namespace tavren
