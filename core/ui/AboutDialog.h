#pragma once

#include <QDialog>

namespace tavren {

// The About window: program name, version and a few words on what Tavren is.
class AboutDialog : public QDialog {
    Q_OBJECT
  public:
    explicit AboutDialog(QWidget* parent = nullptr);

    static QString versionText();
};

}  // namespace tavren
