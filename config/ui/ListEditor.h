#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>
#include <optional>

class QLineEdit;
class QListWidget;
class QPushButton;

namespace tavren {

// A list of single-line entries with a box to type a new one, "Add" and "Remove". Which entries
// are acceptable is the owner's rule, so the ignore and perform lists share this editor.
class ListEditor : public QWidget {
    Q_OBJECT

  public:
    // Given the typed text and the current entries: the entry to add, or nothing to refuse it.
    using Admission = std::function<std::optional<QString>(const QString&, const QStringList&)>;

    ListEditor(const QString& placeholder, Admission admission, QWidget* parent = nullptr);

    QStringList items() const;
    void setItems(const QStringList& items);

    QListWidget* list() const { return list_; }
    QLineEdit* input() const { return input_; }

  public slots:
    // Adds the typed entry when the rule accepts it; true when added.
    bool addTyped();
    void removeSelected();

  private:
    void updateButtons();

    Admission admission_;
    QListWidget* list_;
    QLineEdit* input_;
    QPushButton* addButton_;
    QPushButton* removeButton_;
};

}  // namespace tavren
