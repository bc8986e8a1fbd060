#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "BuddyFixture.h"
#include "contacts/BuddyEditor.h"
#include "contacts/BuddyListText.h"
#include "contacts/ui/BuddyDropTree.h"
#include "contacts/ui/BuddyListSetup.h"
#include "contacts/ui/BuddyTree.h"
#include "contacts/ui/BuddyTreeItems.h"
#include "contacts/ui/ChatBuddy.h"
#include "core/ui/ChatMain.h"

namespace tavren {
namespace {

using Answer = Prompter::Answer;

QAction* entry(QMenu* menu, const char* name) {
    for (QAction* action : menu->actions()) {
        if (action->objectName() == QLatin1String(name)) {
            return action;
        }
    }
    return nullptr;
}

QStringList childNames(const QTreeWidgetItem* folder) {
    QStringList names;
    for (int i = 0; i < folder->childCount(); ++i) {
        names << BuddyTreeItems::nameOf(folder->child(i));
    }
    return names;
}

class BuddyTreeTest : public test::BuddyFixture {
  protected:
    BuddyTreeTest() : tree(buddies(), session.ignoreList()) {
        deliverList();
        deliver(QStringLiteral("Work.bob.smith;True;False;True;False;General;"));
        deliver(QStringLiteral("Work.Carol;True;True;False;False;;lunch"));
        tree.resize(240, 320);
        tree.show();
    }

    void clickOn(QTreeWidgetItem* item, bool twice = false) {
        const QPoint at = tree.visualItemRect(item).center();
        if (twice) {
            QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, at);
        } else {
            QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
        }
    }

    BuddyTree tree;
};

TEST_F(BuddyTreeTest, FoldersAndBuddiesShowCountsPicturesAndTooltips) {
    EXPECT_EQ(tree.objectName(), QStringLiteral("TreeView1"));
    ASSERT_EQ(tree.topLevelItemCount(), 3);
    QTreeWidgetItem* work = tree.folderItem(QStringLiteral("work"));
    ASSERT_NE(work, nullptr);
    EXPECT_EQ(work->text(0), QStringLiteral("Work (2/2)"));
    EXPECT_EQ(tree.folderItem(QStringLiteral("Buddies"))->text(0), QStringLiteral("Buddies (0/1)"));
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(work), QStringLiteral("down"));
    EXPECT_EQ(childNames(work), (QStringList{"bob.smith", "Carol"}));

    QTreeWidgetItem* bob = tree.buddyItem(QStringLiteral("bob.smith"));
    QTreeWidgetItem* carol = tree.buddyItem(QStringLiteral("carol"));
    QTreeWidgetItem* anna = tree.buddyItem(QStringLiteral("anna"));
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(bob), QStringLiteral("+"));
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(carol), QStringLiteral("u"));
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(anna), QStringLiteral("-"));
    EXPECT_FALSE(bob->icon(0).isNull());
    // Tooltips break their lines where the text has carriage returns.
    EXPECT_EQ(bob->toolTip(0), QStringLiteral("\u00A0User: bob.smith\n\u00A0In Channel.. General"));
    // Offline buddies are greyed; those online keep the tree's own colour.
    EXPECT_FALSE(bob->data(0, Qt::ForegroundRole).isValid());
    EXPECT_TRUE(anna->data(0, Qt::ForegroundRole).isValid());

    // A presence change updates the buddy and its folder's count in place.
    deliver(QStringLiteral("Work.bob.smith;False;False;False;False;;"));
    EXPECT_EQ(tree.buddyItem(QStringLiteral("bob.smith")), bob);
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(bob), QStringLiteral("-"));
    EXPECT_EQ(work->text(0), QStringLiteral("Work (1/2)"));

    // Hiding offline buddies leaves the counts alone.
    BuddyListOptions options = buddies().options();
    options.showOffline = false;
    buddies().setOptions(options);
    EXPECT_TRUE(tree.buddyItem(QStringLiteral("anna"))->isHidden());
    EXPECT_FALSE(tree.buddyItem(QStringLiteral("carol"))->isHidden());
    deliver(QStringLiteral("Buddies.anna;True;False;False;False;;"));
    EXPECT_FALSE(tree.buddyItem(QStringLiteral("anna"))->isHidden());
    EXPECT_EQ(tree.folderItem(QStringLiteral("Work"))->text(0), QStringLiteral("Work (1/2)"));
}

TEST_F(BuddyTreeTest, FoldersOpenAndCloseAndBuddiesAskForConversations) {
    QSignalSpy conversation(&tree, &BuddyTree::conversationRequested);
    QTreeWidgetItem* work = tree.folderItem(QStringLiteral("Work"));
    clickOn(work);
    EXPECT_FALSE(work->isExpanded());
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(work), QStringLiteral("right"));
    // A new list keeps the folder closed.
    deliver(QStringLiteral("Work.bob.smith:Work.Carol:Buddies.anna:"));
    work = tree.folderItem(QStringLiteral("Work"));
    EXPECT_EQ(tree.topLevelItem(0), work);
    EXPECT_FALSE(work->isExpanded());
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(work), QStringLiteral("right"));
    // A double click opens it once, not twice.
    clickOn(work, true);
    EXPECT_TRUE(work->isExpanded());
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(work), QStringLiteral("down"));
    EXPECT_EQ(conversation.count(), 0);

    clickOn(tree.buddyItem(QStringLiteral("Carol")), true);
    tree.setCurrentItem(tree.buddyItem(QStringLiteral("bob.smith")));
    QTest::keyClick(&tree, Qt::Key_Return);
    ASSERT_EQ(conversation.count(), 2);
    EXPECT_EQ(conversation[0][0].toString(), QStringLiteral("Carol"));
    EXPECT_EQ(conversation[1][0].toString(), QStringLiteral("bob.smith"));
    // Enter on a folder closes it.
    tree.setCurrentItem(work);
    QTest::keyClick(&tree, Qt::Key_Enter);
    EXPECT_FALSE(work->isExpanded());
}

TEST_F(BuddyTreeTest, TheBuddyMenuOffersWhatTheClientCanDo) {
    QSignalSpy conversation(&tree, &BuddyTree::conversationRequested);
    QSignalSpy locate(&tree, &BuddyTree::locateRequested);
    QSignalSpy profile(&tree, &BuddyTree::profileRequested);
    EXPECT_EQ(tree.menuFor(tree.folderItem(QStringLiteral("Work"))), nullptr);
    EXPECT_EQ(tree.menuFor(nullptr), nullptr);

    session.ignoreList().add(QStringLiteral("CAROL"));
    const std::unique_ptr<QMenu> carolMenu(tree.menuFor(tree.buddyItem(QStringLiteral("carol"))));
    ASSERT_NE(carolMenu, nullptr);
    for (const char* name : {"sendpm", "locate", "viewprofile", "removebuddy", "unignore"}) {
        ASSERT_NE(entry(carolMenu.get(), name), nullptr) << name;
        EXPECT_TRUE(entry(carolMenu.get(), name)->isEnabled()) << name;
    }
    EXPECT_EQ(entry(carolMenu.get(), "unignore")->text(), QStringLiteral("Un-Ignore User.."));
    ASSERT_NE(entry(carolMenu.get(), "game"), nullptr);
    EXPECT_FALSE(entry(carolMenu.get(), "game")->isEnabled());
    entry(carolMenu.get(), "sendpm")->trigger();
    entry(carolMenu.get(), "locate")->trigger();
    EXPECT_EQ(conversation.count(), 1);
    ASSERT_EQ(locate.count(), 1);
    EXPECT_EQ(locate[0][0].toString(), QStringLiteral("Carol"));
    entry(carolMenu.get(), "viewprofile")->trigger();
    ASSERT_EQ(profile.count(), 1);
    EXPECT_EQ(profile[0][0].toString(), QStringLiteral("Carol"));

    // Un-ignoring takes the name off the list and out of its file.
    entry(carolMenu.get(), "unignore")->trigger();
    EXPECT_FALSE(session.ignoreList().contains(QStringLiteral("carol")));
    IgnoreList reread(session.ignoreList().filePath());
    reread.load();
    EXPECT_TRUE(reread.names().isEmpty());
    const std::unique_ptr<QMenu> annaMenu(tree.menuFor(tree.buddyItem(QStringLiteral("anna"))));
    EXPECT_FALSE(entry(annaMenu.get(), "unignore")->isEnabled());
    // Offline, removing changes nothing (the list belongs to the server).
    entry(annaMenu.get(), "removebuddy")->trigger();
    EXPECT_NE(tree.buddyItem(QStringLiteral("anna")), nullptr);
}

class ChatBuddyTest : public test::BuddyFixture {
  protected:
    ChatBuddyTest() {
        deliverList();
        window = std::make_unique<ChatBuddy>(buddies(), prompter);
        window->show();
    }

    QTreeWidgetItem* item(const QString& name) const {
        const auto found = window->tree().findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? nullptr : found.first();
    }
    QString draft() const { return BuddyListText::serialise(window->editor().folders()); }
    QPushButton* button(const char* name) const {
        auto* found = window->findChild<QPushButton*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    std::unique_ptr<ChatBuddy> window;
};

TEST_F(ChatBuddyTest, TheEditorShowsTheListAndItsButtonsFollowTheSelection) {
    BuddyDropTree& tree = window->tree();
    EXPECT_EQ(tree.objectName(), QStringLiteral("TreeView2"));
    ASSERT_EQ(tree.topLevelItemCount(), 3);
    EXPECT_EQ(BuddyTreeItems::imageKeyOf(tree.topLevelItem(1)), QStringLiteral("down"));
    EXPECT_EQ(childNames(tree.topLevelItem(1)), (QStringList{"bob.smith", "Carol"}));
    // Folders stay put; buddies can be dragged.
    EXPECT_FALSE(tree.topLevelItem(1)->flags().testFlag(Qt::ItemIsDragEnabled));
    EXPECT_TRUE(item(QStringLiteral("Carol"))->flags().testFlag(Qt::ItemIsDragEnabled));

    tree.setCurrentItem(item(QStringLiteral("Work")));
    EXPECT_TRUE(button("rename")->isEnabled());
    EXPECT_FALSE(button("moveto")->isEnabled());
    tree.setCurrentItem(item(QStringLiteral("Carol")));
    EXPECT_FALSE(button("rename")->isEnabled());
    EXPECT_TRUE(button("moveto")->isEnabled());

    // "Move to" lists the other folders.
    QMenu* move = window->moveMenu();
    emit move->aboutToShow();
    ASSERT_EQ(move->actions().size(), 2);
    EXPECT_EQ(move->actions()[0]->text(), QStringLiteral("Buddies"));
    move->actions()[1]->trigger();
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:Work.bob.smith:Family.dave:Family.Carol:"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Edit Buddies *"));
    // The selection follows the moved buddy, which the tree shows in its new folder.
    EXPECT_EQ(BuddyTreeItems::nameOf(tree.currentItem()), QStringLiteral("Carol"));
    EXPECT_EQ(childNames(item(QStringLiteral("Family"))), (QStringList{"dave", "Carol"}));

    // A drop asks the editor to move; the tree follows the editor, not the drag.
    emit tree.moveRequested(QStringLiteral("anna"), QStringLiteral("Family"), 0);
    EXPECT_EQ(childNames(item(QStringLiteral("Family"))), (QStringList{"anna", "dave", "Carol"}));
}

TEST_F(ChatBuddyTest, MenusButtonsAndClosingAskWhatTheyShould) {
    BuddyDropTree& tree = window->tree();
    const std::unique_ptr<QMenu> folderMenu(window->menuFor(item(QStringLiteral("Family"))));
    for (const char* name : {"mnuaddbuddy", "mnuaddfolder", "rename", "remove"}) {
        EXPECT_NE(entry(folderMenu.get(), name), nullptr) << name;
    }
    prompter.answers = {Answer::Yes};
    entry(folderMenu.get(), "remove")->trigger();
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Remove Group?"));
    EXPECT_EQ(item(QStringLiteral("Family")), nullptr);

    const std::unique_ptr<QMenu> buddyMenu(window->menuFor(item(QStringLiteral("anna"))));
    EXPECT_NE(entry(buddyMenu.get(), "remove"), nullptr);
    auto* moveTo = buddyMenu->findChild<QMenu*>(QStringLiteral("moveto"));
    ASSERT_NE(moveTo, nullptr);
    ASSERT_EQ(moveTo->actions().size(), 1);
    EXPECT_EQ(moveTo->actions()[0]->text(), QStringLiteral("Work"));

    // Add Buddy goes into the selected buddy's folder.
    tree.setCurrentItem(item(QStringLiteral("Carol")));
    prompter.texts = {QStringLiteral("zed")};
    button("mnuaddbuddy")->click();
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Work.zed:"));
    // The server's list does not overwrite unsaved work.
    deliver(QStringLiteral("Buddies.anna:"));
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Work.zed:"));

    // Closing with changes asks; Cancel stays, No drops them.
    prompter.answers = {Answer::Cancel, Answer::No};
    button("close")->click();
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Save the changes to your buddy list?"));
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:"));
    // Save offline refuses and stays open.
    window->show();
    window->editor().addFolder(QStringLiteral("New"));
    window->editor().addBuddy(QStringLiteral("yan"), QStringLiteral("New"));
    button("save")->click();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Buddy List"));
}

TEST_F(ChatBuddyTest, SetupKeepsTheChoicesAndTheMainWindowUsesTheBuddyWidgets) {
    BuddyListSetup setup(buddies());
    EXPECT_TRUE(setup.showOffline()->isChecked());
    EXPECT_TRUE(setup.playSounds()->isChecked());
    EXPECT_TRUE(setup.notifyOnline()->isChecked());
    setup.showOffline()->setChecked(false);
    setup.notifyOnline()->setChecked(false);
    setup.reject();
    EXPECT_TRUE(buddies().options().showOffline);
    setup.accept();
    EXPECT_FALSE(buddies().options().showOffline);
    EXPECT_TRUE(buddies().options().playSounds);
    EXPECT_FALSE(BuddyListOptions::load(session.store()).notifyOnline);
    BuddyListSetup again(buddies());
    EXPECT_FALSE(again.showOffline()->isChecked());

    ChatMain main(session);
    auto* tree = main.findChild<BuddyTree*>(QStringLiteral("TreeView1"));
    ASSERT_NE(tree, nullptr);
    // Offline the main window shows no list; the next list from the server fills it.
    EXPECT_EQ(tree->topLevelItemCount(), 0);
    deliver(QStringLiteral("Work.bob:"));
    EXPECT_EQ(tree->topLevelItemCount(), 1);
    EXPECT_EQ(main.findChild<QLabel*>(QStringLiteral("buddyCaption"))->text(),
              QStringLiteral("Buddies (0)"));
    // The editor and the add need the server; the setup does not.
    EXPECT_FALSE(main.action(QStringLiteral("mnuaddbuddy"))->isEnabled());
    EXPECT_FALSE(main.action(QStringLiteral("editbuddys"))->isEnabled());
    EXPECT_TRUE(main.action(QStringLiteral("mnusetupb"))->isEnabled());
    main.action(QStringLiteral("mnusetupb"))->trigger();
    auto* opened = main.findChild<BuddyListSetup*>();
    ASSERT_NE(opened, nullptr);
    main.action(QStringLiteral("mnusetupb"))->trigger();
    EXPECT_EQ(main.findChildren<BuddyListSetup*>().size(), 1);
    opened->close();
}

}  // namespace
}  // namespace tavren
