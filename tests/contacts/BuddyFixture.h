#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "contacts/BuddyList.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "support/ScriptedPrompter.h"

namespace tavren::test {

// One client, offline, fed the buddy frames as if the server had sent them.
class BuddyFixture : public ::testing::Test {
  protected:
    BuddyFixture()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {}

    BuddyList& buddies() { return session.buddies(); }

    void deliver(const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{protocol::server_to_client::kBuddyPresence, WireText::toWire(payload)});
    }

    // Three folders' worth of buddies, none of them known to be online yet.
    void deliverList() {
        deliver(QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Family.dave:"));
    }

    QTemporaryDir dir;
    ScriptedPrompter prompter;
    ClientSession session;
};

}  // namespace tavren::test
