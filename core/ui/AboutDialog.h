#pragma once

#include <QDialog>

namespace tavren {

// The About window: program name, version, a few words on what Tavren is, the credits for its
// own pictures, sounds and texts, and the licences of the libraries it is built on.
class AboutDialog : public QDialog {
    Q_OBJECT
  public:
    explicit AboutDialog(QWidget* parent = nullptr);

    static QString versionText();
    static QString creditsHtml();
};

}  // namespace tavren
