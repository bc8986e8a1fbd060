#include "core/ui/AboutDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "core/ClientVersion.h"
#include "core/ui/AppIcon.h"

namespace tavren {

QString AboutDialog::versionText() {
    return QStringLiteral("%1.%2.%3")
        .arg(kClientVersionMajor)
        .arg(kClientVersionMinor)
        .arg(kClientVersionRevision);
}

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("About"));
    setWindowTitle(QStringLiteral("About Tavren"));

    auto* icon = new QLabel(this);
    icon->setPixmap(AppIcon::make(true).pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);

    auto* text = new QLabel(this);
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setText(QStringLiteral("<h2>Tavren Chat Service</h2>"
                                 "<p>Version: %1</p>"
                                 "<p>Channels, private conversations, buddies, offline mail, "
                                 "file and picture transfers and Texas Hold'em tables.</p>")
                      .arg(versionText()));

    auto* row = new QHBoxLayout;
    row->addWidget(icon);
    row->addWidget(text, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(buttons);
    setMinimumWidth(360);
}

}  // namespace tavren
