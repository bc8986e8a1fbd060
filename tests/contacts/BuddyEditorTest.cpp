#include <gtest/gtest.h>

#include <QSignalSpy>

#include "BuddyFixture.h"
#include "contacts/BuddyEditor.h"
#include "contacts/BuddyListText.h"

namespace tavren {
namespace {

using Answer = Prompter::Answer;

class BuddyEditorTest : public test::BuddyFixture {
  protected:
    BuddyEditorTest() {
        deliverList();
        editor.reload();
    }

    QString draft() const { return BuddyListText::serialise(editor.folders()); }
    // The last message shown, as "title: text".
    QString lastMessage() const {
        if (prompter.asked.empty()) {
            return QString();
        }
        return prompter.asked.back().title + QStringLiteral(": ") + prompter.asked.back().text;
    }

    BuddyEditor editor{buddies(), prompter};
};

TEST_F(BuddyEditorTest, NewBuddiesAreAskedForAndBadOrKnownNamesRefused) {
    prompter.texts = {QString(), QStringLiteral("9lives"), QStringLiteral(" ANNA "),
                      QStringLiteral("zed")};
    // Cancelled: nothing asked beyond the name, nothing changed.
    EXPECT_FALSE(editor.askAndAddBuddy(QStringLiteral("Work")));
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].text, QStringLiteral("Enter user name:"));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Add New Buddy"));

    EXPECT_FALSE(editor.askAndAddBuddy(QStringLiteral("Work")));
    EXPECT_EQ(lastMessage(), QStringLiteral("Invalid Buddy Name: Invalid Buddy Name: {buddies}"));
    EXPECT_FALSE(editor.askAndAddBuddy(QStringLiteral("Work")));
    EXPECT_EQ(lastMessage(), QStringLiteral("User Already Exists.: A buddy with the user name ANNA "
                                            "already exists."));
    EXPECT_FALSE(editor.modified());

    EXPECT_TRUE(editor.askAndAddBuddy(QStringLiteral("Work")));
    // Into the default folder when no folder (or an unknown one) is chosen.
    EXPECT_TRUE(editor.addBuddy(QStringLiteral("yan"), QString()));
    EXPECT_TRUE(editor.modified());
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:Buddies.yan:Work.bob.smith:Work.Carol:"
                                      "Work.zed:Family.dave:"));
    // The list itself waits for Save.
    EXPECT_FALSE(buddies().contains(QStringLiteral("zed")));
}

TEST_F(BuddyEditorTest, FoldersAreAddedRenamedAndRemovedOnlyWhenAllowed) {
    prompter.texts = {QStringLiteral("work"), QStringLiteral("Bad.Name"),
                      QStringLiteral("Friends")};
    EXPECT_FALSE(editor.askAndAddFolder());
    EXPECT_EQ(prompter.asked[0].text, QStringLiteral("Enter folder name:"));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Add New Folder"));
    EXPECT_EQ(
        lastMessage(),
        QStringLiteral("Folder Already Exists.: A folder with the name work already exists."));
    EXPECT_FALSE(editor.askAndAddFolder());
    EXPECT_TRUE(lastMessage().startsWith(QStringLiteral("Invalid Folder Name: ")));
    EXPECT_TRUE(editor.askAndAddFolder());
    // An empty folder is shown in the editor but never sent.
    ASSERT_EQ(editor.folders().size(), 4u);
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Family.dave:"));

    EXPECT_FALSE(editor.renameFolder(QStringLiteral("Work"), QStringLiteral("Buddies")));
    EXPECT_TRUE(editor.renameFolder(QStringLiteral("Work"), QStringLiteral("Office")));
    // A new spelling of its own name is no clash.
    EXPECT_TRUE(editor.renameFolder(QStringLiteral("Office"), QStringLiteral("office")));
    EXPECT_FALSE(editor.renameFolder(QStringLiteral("Nowhere"), QStringLiteral("Else")));
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:office.bob.smith:office.Carol:Family.dave:"));

    // Removing a folder asks first; "No" keeps it.
    prompter.answers = {Answer::No, Answer::Yes};
    EXPECT_FALSE(editor.removeFolder(QStringLiteral("office")));
    EXPECT_EQ(prompter.asked.back().kind, QStringLiteral("yesno"));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Are you sure you want to remove the entire group of buddies?"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Remove Group?"));
    EXPECT_TRUE(editor.removeFolder(QStringLiteral("office")));
    EXPECT_TRUE(editor.removeBuddy(QStringLiteral("DAVE")));
    EXPECT_FALSE(editor.removeBuddy(QStringLiteral("dave")));
    EXPECT_EQ(draft(), QStringLiteral("Buddies.anna:"));

    editor.reload();
    EXPECT_FALSE(editor.modified());
    EXPECT_EQ(draft(), buddies().serialised());
}

TEST_F(BuddyEditorTest, BuddiesMoveBetweenAndWithinFolders) {
    QSignalSpy changed(&editor, &BuddyEditor::changed);
    EXPECT_TRUE(editor.moveBuddy(QStringLiteral("anna"), QStringLiteral("Work")));
    EXPECT_EQ(draft(), QStringLiteral("Work.bob.smith:Work.Carol:Work.anna:Family.dave:"));
    // Before the first buddy; then down past the one after it.
    EXPECT_TRUE(editor.moveBuddy(QStringLiteral("anna"), QStringLiteral("Work"), 0));
    EXPECT_EQ(draft(), QStringLiteral("Work.anna:Work.bob.smith:Work.Carol:Family.dave:"));
    EXPECT_TRUE(editor.moveBuddy(QStringLiteral("anna"), QStringLiteral("Work"), 2));
    EXPECT_EQ(draft(), QStringLiteral("Work.bob.smith:Work.anna:Work.Carol:Family.dave:"));
    EXPECT_TRUE(editor.moveBuddy(QStringLiteral("dave"), QStringLiteral("work"), 1));
    EXPECT_EQ(draft(), QStringLiteral("Work.bob.smith:Work.dave:Work.anna:Work.Carol:"));
    EXPECT_EQ(changed.count(), 4);

    // Where it already is, to a folder that does not exist, or a buddy that does not: nothing.
    EXPECT_FALSE(editor.moveBuddy(QStringLiteral("dave"), QStringLiteral("Work"), 1));
    EXPECT_FALSE(editor.moveBuddy(QStringLiteral("dave"), QStringLiteral("Work"), 2));
    EXPECT_FALSE(editor.moveBuddy(QStringLiteral("Carol"), QStringLiteral("Work")));
    EXPECT_FALSE(editor.moveBuddy(QStringLiteral("dave"), QStringLiteral("Nowhere")));
    EXPECT_FALSE(editor.moveBuddy(QStringLiteral("zed"), QStringLiteral("Work")));
    EXPECT_EQ(changed.count(), 4);
    // The emptied folders stay in the editor until it saves.
    EXPECT_EQ(editor.folders().size(), 3u);
}

TEST_F(BuddyEditorTest, NothingIsSavedOrAddedWhileOffline) {
    EXPECT_TRUE(editor.addBuddy(QStringLiteral("zed"), QStringLiteral("Work")));
    EXPECT_FALSE(editor.save());
    EXPECT_EQ(lastMessage(), QStringLiteral("Buddy List: You are not connected: your buddy list "
                                            "was not saved."));
    EXPECT_TRUE(editor.modified());
    EXPECT_FALSE(buddies().contains(QStringLiteral("zed")));

    // The main window's "Add Buddy..": the same refusals, then the list's own add.
    prompter.texts = {QStringLiteral("Carol"), QStringLiteral("zed")};
    EXPECT_FALSE(BuddyEditor::askAndAddTo(buddies(), prompter));
    EXPECT_EQ(lastMessage(), QStringLiteral("User Already Exists.: A buddy with the user name "
                                            "Carol already exists."));
    EXPECT_FALSE(BuddyEditor::askAndAddTo(buddies(), prompter));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Add New Buddy"));
}

}  // namespace
}  // namespace tavren
