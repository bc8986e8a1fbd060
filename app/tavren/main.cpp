#include <QApplication>

#include "config/SystemAutostart.h"
#include "core/ClientSession.h"
#include "core/DataRoot.h"
#include "core/Startup.h"
#include "core/ui/ChatMain.h"
#include "core/ui/ConnectionWindows.h"
#include "core/ui/MessageBoxPrompter.h"

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tavren"));
    QApplication::setApplicationName(QStringLiteral("Tavren"));
    // Closing the main window ends the program; hiding it to the tray must not.
    QApplication::setQuitOnLastWindowClosed(false);

    const QString dataRoot = tavren::DataRoot::path();
    tavren::MessageBoxPrompter prompter;
    tavren::Startup startup(dataRoot, prompter);
    if (!startup.claimProcess()) {
        return 0;
    }

    tavren::SystemAutostart autostart;
    tavren::ClientSession session(dataRoot, &autostart, prompter);
    tavren::ChatMain main(session);
    const QString problems = startup.loadUserData(session);
    main.show();
    // The login window comes up beside the main window; with auto-login on, it logs straight in.
    main.connectionWindows().showLogin();
    session.server().login().autoLoginIfWanted();
    if (!problems.isEmpty()) {
        prompter.message(problems, QStringLiteral("Tavren"), tavren::Prompter::Icon::Warning);
    }
    return QApplication::exec();
}
