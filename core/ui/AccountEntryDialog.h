#pragma once

#include "core/ui/FormDialog.h"

namespace tavren {

class SavedAccounts;

// Adds a saved account to the login list or changes one (the list's "addquick" and "modify"
// items). The entry is checked against the list before the dialog closes; problems are shown
// inside the dialog.
class AccountEntryDialog : public FormDialog {
    Q_OBJECT
  public:
    // `row` 0 adds a new entry, a saved account's row edits it.
    AccountEntryDialog(SavedAccounts& accounts, int row, QWidget* parent = nullptr);

    // The row of the saved entry after OK, else -1.
    int savedRow() const { return savedRow_; }

    void accept() override;

  private:
    SavedAccounts& accounts_;
    int row_;
    int savedRow_ = -1;
    QLineEdit* name_;
    QLineEdit* password_;
};

}  // namespace tavren
