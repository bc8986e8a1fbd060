// The conversation window's direct-connection controls, offscreen: the link and the blinking
// accept button follow an offer, the Transfer menu and buttons are there and enabled, the open
// dialog's filters, dropped files and their refusals, and received pictures shown and opened.
#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTextDocument>

#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "pm/DirectLinks.h"
#include "pm/TransferMarkup.h"
#include "pm/ui/ChatPM.h"
#include "pm/ui/PmInputBox.h"
#include "pm/ui/PmTab.h"
#include "render/ui/ChatPane.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;

class ChatPMTransferTest : public ::testing::Test {
  protected:
    ChatPMTransferTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter),
          window(session) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }
    // As a drag ends: it enters the box, then drops (Qt delivers a drop only after an accepted
    // enter).
    void drop(PmInputBox& box, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(box.viewport(), &enter);
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(box.viewport(), &event);
    }
    QString paneHtml(int position) {
        ChatPane& pane = window.tab(position)->pane();
        pane.flush();
        return pane.bodyHtml();
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session;
    ChatPM window;
};

TEST_F(ChatPMTransferTest, AnOfferOpensTheConversationWithItsLinkAndABlinkingAcceptButton) {
    deliver(in::kDirectConnection, QStringLiteral("alice:1:2000:127.0.0.1"));
    ASSERT_EQ(window.tabs().count(), 1);
    PmTab* tab = window.tab(0);
    EXPECT_TRUE(paneHtml(0).contains(QStringLiteral("** Would like to Directly Connect.. **")));
    EXPECT_TRUE(tab->directLink().text().contains(QStringLiteral("- Accept Direct Connection..")));
    EXPECT_EQ(tab->transferButton().text(), QStringLiteral("Accept"));
    session.directLinks().linkForIndex(0)->blink();
    EXPECT_EQ(tab->transferButton().text(), QStringLiteral("*Accept*"));
    EXPECT_EQ(window.action(QStringLiteral("mnudirect"))->text(),
              QStringLiteral("Accept Direct Connection.."));
    // A withdrawn offer: the link asks to share again.
    deliver(in::kDirectConnection, QStringLiteral("alice:2:0:127.0.0.1"));
    EXPECT_TRUE(paneHtml(0).contains(QStringLiteral("** Canceled Direct Connection Request.. **")));
    EXPECT_TRUE(
        tab->directLink().text().contains(QStringLiteral("- Connect to Share Files/Pictures..")));
    EXPECT_EQ(tab->transferButton().text(), QStringLiteral("Send File"));
    // Handshakes other than an offer open nothing, and ignored members are not heard.
    deliver(in::kDirectConnection, QStringLiteral("bob:5:0:127.0.0.1"));
    session.ignoreList().add(QStringLiteral("carol"));
    deliver(in::kDirectConnection, QStringLiteral("carol:1:2000:127.0.0.1"));
    deliver(in::kDirectConnection, QStringLiteral("dave:9:2000:127.0.0.1"));
    EXPECT_EQ(window.tabs().count(), 1);
}

TEST_F(ChatPMTransferTest, TheTransferMenuAndButtonsAreThereAndEnabled) {
    deliver(in::kPrivateMessage, QStringLiteral("alice:hi"));
    PmTab* tab = window.tab(0);
    for (const char* name : {"mnudirect", "mnusendfile", "mnusendpicture", "mnucapture"}) {
        QAction* action = window.action(QString::fromLatin1(name));
        ASSERT_NE(action, nullptr) << name;
        EXPECT_TRUE(action->isEnabled()) << name;
    }
    EXPECT_EQ(tab->transferButton().objectName(), QStringLiteral("XPButton6"));
    EXPECT_EQ(tab->transferButton().text(), QStringLiteral("Send File"));
    EXPECT_TRUE(tab->pictureButton().isEnabled());
    EXPECT_TRUE(tab->captureButton().isEnabled());
    EXPECT_FALSE(tab->outProgress().isVisibleTo(tab));

    // The open dialog offers all files, and for pictures the picture kinds too.
    QFileDialog* dialog = window.chooseFile(true);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->nameFilters(), ChatPM::fileFilters(true));
    EXPECT_TRUE(dialog->testOption(QFileDialog::HideNameFilterDetails));
    EXPECT_EQ(ChatPM::fileFilters(true).size(), 6);
    EXPECT_TRUE(ChatPM::fileFilters(true).at(1).startsWith(
        QStringLiteral("All Image Files (*.bmp,*.jpg,*.gif,*.png) (")));
    EXPECT_EQ(ChatPM::fileFilters(false), QStringList{QStringLiteral("All Files(*.*) (*)")});
    dialog->close();

    // Not logged in: a connection cannot be asked for, and the conversation says so.
    window.action(QStringLiteral("mnudirect"))->trigger();
    EXPECT_TRUE(paneHtml(0).contains(QStringLiteral("You are not connected")));
}

TEST_F(ChatPMTransferTest, DroppingSeveralFilesOrAFolderIsRefused) {
    deliver(in::kPrivateMessage, QStringLiteral("alice:hi"));
    PmInputBox& box = window.tab(0)->input();
    int droppedCount = 0;
    QObject::connect(&box, &PmInputBox::filesDropped, &box,
                     [&](const QList<QUrl>&) { ++droppedCount; });
    QFile a(dir.filePath(QStringLiteral("a.txt")));
    ASSERT_TRUE(a.open(QIODevice::WriteOnly));
    a.write("a");
    a.close();
    drop(box, {QUrl::fromLocalFile(a.fileName()), QUrl::fromLocalFile(a.fileName())});
    EXPECT_EQ(droppedCount, 1);
    ASSERT_FALSE(prompter.asked.empty());
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("You may only drag 1 file at a time"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Transfer Error:"));
    drop(box, {QUrl::fromLocalFile(dir.path())});
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Directories can't be transfered"));
    EXPECT_TRUE(box.text().isEmpty()) << "a dropped file is never typed into the box";
}

// A picture a transfer put in the pane shows from the download folder; any other local picture
// a member writes into a line does not. Its link opens the file, and its menu offers to view or
// keep it.
TEST_F(ChatPMTransferTest, AReceivedPictureShowsAndItsLinkOpensTheFile) {
    deliver(in::kPrivateMessage, QStringLiteral("alice:hi"));
    QStringList opened;
    session.directLinks().setFileOpener([&opened](const QString& path) { opened << path; });
    QDir(dir.path()).mkpath(QStringLiteral("downloaded"));
    const QString picture = dir.filePath(QStringLiteral("downloaded/shot 1.png"));
    QImage(640, 200, QImage::Format_RGB32).save(picture);
    const QString stranger = dir.filePath(QStringLiteral("secret.png"));
    QImage(10, 10, QImage::Format_RGB32).save(stranger);
    session.directLinks().shownFiles().add(picture);
    session.privateChats().appendPrivateLine(
        QStringLiteral("alice"),
        TransferMarkup::forFile(QStringLiteral("shot 1.png"), picture, QSize(640, 200)));
    ChatPane& pane = window.tab(0)->pane();
    const QVariant shown =
        pane.loadResource(QTextDocument::ImageResource, QUrl(TransferMarkup::source(picture)));
    EXPECT_EQ(shown.value<QImage>().size(), QSize(400, 125));
    const QVariant refused =
        pane.loadResource(QTextDocument::ImageResource, QUrl(TransferMarkup::source(stranger)));
    EXPECT_TRUE(refused.value<QImage>().isNull());

    emit pane.anchorClicked(QUrl::fromLocalFile(picture));
    EXPECT_EQ(opened, QStringList{QDir::cleanPath(picture)});
    emit pane.anchorClicked(QUrl::fromLocalFile(stranger));
    EXPECT_EQ(opened.size(), 1);

    QMenu menu;
    window.fillPaneMenu(menu, QUrl::fromLocalFile(picture));
    QStringList names;
    for (QAction* action : menu.actions()) {
        names << action->objectName();
    }
    EXPECT_TRUE(names.contains(QStringLiteral("mnuViewImage")));
    EXPECT_TRUE(names.contains(QStringLiteral("mnuSaveImageAs")));
    QMenu plain;
    window.fillPaneMenu(plain, QUrl::fromLocalFile(stranger));
    for (QAction* action : plain.actions()) {
        EXPECT_NE(action->objectName(), QStringLiteral("mnuViewImage"));
    }

    // Keeping a copy needs an extension, and asks before replacing.
    session.directLinks().saveCopy(picture, dir.filePath(QStringLiteral("copy")));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Error in filename... No Extention.."));
    session.directLinks().saveCopy(picture, dir.filePath(QStringLiteral("copy.png")));
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("copy.png"))));
    prompter.answers.push_back(Prompter::Answer::No);
    session.directLinks().saveCopy(picture, stranger);
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("File already exists, do you wish to overwrite?"));
    EXPECT_EQ(QImage(stranger).size(), QSize(10, 10));
}

}  // namespace
}  // namespace tavren
