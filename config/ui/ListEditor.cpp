#include "config/ui/ListEditor.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace tavren {

ListEditor::ListEditor(const QString& placeholder, Admission admission, QWidget* parent)
    : QWidget(parent), admission_(std::move(admission)) {
    list_ = new QListWidget(this);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    input_ = new QLineEdit(this);
    input_->setPlaceholderText(placeholder);
    addButton_ = new QPushButton(tr("&Add"), this);
    removeButton_ = new QPushButton(tr("&Remove"), this);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(list_, 0, 0, 1, 2);
    grid->addWidget(removeButton_, 0, 2, Qt::AlignTop);
    grid->addWidget(input_, 1, 0, 1, 2);
    grid->addWidget(addButton_, 1, 2);
    grid->setColumnStretch(0, 1);

    connect(addButton_, &QPushButton::clicked, this, &ListEditor::addTyped);
    connect(input_, &QLineEdit::returnPressed, this, &ListEditor::addTyped);
    connect(removeButton_, &QPushButton::clicked, this, &ListEditor::removeSelected);
    connect(input_, &QLineEdit::textChanged, this, &ListEditor::updateButtons);
    connect(list_, &QListWidget::itemSelectionChanged, this, &ListEditor::updateButtons);
    // Picking an entry puts it in the box, so a slightly different one is quick to make.
    connect(list_, &QListWidget::currentTextChanged, input_, &QLineEdit::setText);
    updateButtons();
}

QStringList ListEditor::items() const {
    QStringList items;
    for (int row = 0; row < list_->count(); ++row) {
        items << list_->item(row)->text();
    }
    return items;
}

void ListEditor::setItems(const QStringList& items) {
    list_->clear();
    list_->addItems(items);
    input_->clear();
    updateButtons();
}

bool ListEditor::addTyped() {
    const auto entry = admission_(input_->text(), items());
    if (!entry) {
        return false;
    }
    list_->addItem(*entry);
    list_->setCurrentRow(list_->count() - 1);
    input_->clear();
    updateButtons();
    return true;
}

void ListEditor::removeSelected() {
    delete list_->takeItem(list_->currentRow());
    updateButtons();
}

void ListEditor::updateButtons() {
    addButton_->setEnabled(admission_(input_->text(), items()).has_value());
    removeButton_->setEnabled(list_->currentRow() >= 0 && !list_->selectedItems().isEmpty());
}

}  // namespace tavren
