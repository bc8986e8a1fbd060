#include "core/ui/AboutDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <QtGlobal>

#include "core/ClientVersion.h"
#include "core/ui/AppIcon.h"

namespace tavren {

QString AboutDialog::versionText() {
    return QStringLiteral("%1.%2.%3")
        .arg(kClientVersionMajor)
        .arg(kClientVersionMinor)
        .arg(kClientVersionRevision);
}

QString AboutDialog::creditsHtml() {
    return QStringLiteral(
               "<h3>Credits</h3>"
               "<p>The smileys, the event sounds, the program and tool bar icons and the rank "
               "marks are Tavren's own work: drawn and synthesised by programs in Tavren's "
               "source (<code>assets/tools</code> and the icon classes), with no artwork, font "
               "glyphs or recordings taken from anywhere else. The help pages are our own "
               "text.</p>"
               "<p>The weather lookup asks wttr.in by default, and the radio player starts with "
               "a SomaFM station; both are other people's services, and both can be changed in "
               "Tavren &gt; Settings.. &gt; Web Services.</p>"
               "<h3>Libraries</h3>"
               "<table cellpadding='2'>"
               "<tr><td><b>Qt %1</b> (Core, Gui, Widgets, Network, Multimedia)</td>"
               "<td>GNU LGPL version 3</td></tr>"
               "<tr><td>Qt Multimedia's FFmpeg or GStreamer back end (radio, sounds)</td>"
               "<td>GNU LGPL version 2.1 or later</td></tr>"
               "<tr><td>The C++ standard library (GCC's libstdc++)</td>"
               "<td>GNU GPL version 3 with the GCC Runtime Library Exception</td></tr>"
               "</table>"
               "<p>The Tavren server, tavrend, is built on Asio (Boost Software License 1.0), "
               "SQLite (public domain) and libsodium (ISC licence). The tests and benchmarks use "
               "GoogleTest (BSD 3-Clause), Google Benchmark (Apache 2.0) and libjpeg-turbo "
               "(IJG and BSD 3-Clause licences); none of them is part of the client.</p>"
               "<p>The JPEG encoder, the hand evaluator, the wire protocol and everything else "
               "in Tavren are written for Tavren.</p>")
        .arg(QString::fromLatin1(qVersion()));
}

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("About"));
    setWindowTitle(QStringLiteral("About Tavren"));

    auto* icon = new QLabel(this);
    icon->setPixmap(AppIcon::make(true).pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);

    auto* text = new QLabel(this);
    text->setObjectName(QStringLiteral("summary"));
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setText(QStringLiteral("<h2>Tavren Chat Service</h2>"
                                 "<p>Version: %1</p>"
                                 "<p>Channels, private conversations, buddies, offline mail, "
                                 "file and picture transfers and Texas Hold'em tables.</p>")
                      .arg(versionText()));

    auto* credits = new QTextBrowser(this);
    credits->setObjectName(QStringLiteral("credits"));
    credits->setOpenLinks(false);
    credits->setHtml(creditsHtml());

    auto* row = new QHBoxLayout;
    row->addWidget(icon);
    row->addWidget(text, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(credits, 1);
    layout->addWidget(buttons);
    setMinimumSize(420, 420);
    resize(480, 520);
}

}  // namespace tavren
