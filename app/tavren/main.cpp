#include <QApplication>

#include "config/SystemAutostart.h"
#include "core/ClientSession.h"
#include "core/DataRoot.h"
#include "core/ServerTrust.h"
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
    // "--trust-server HOST:PORT=FINGERPRINT": a server the caller vouches for (scripts/run.sh
    // names the local server it started), taken without asking the member.
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
        QString key;
        QString fingerprint;
        if (arguments[i] == QLatin1String("--trust-server") &&
            tavren::ServerTrust::parseTrusted(arguments[i + 1], key, fingerprint)) {
            session.settings().setKnownServer(key, fingerprint);
        }
    }
    main.show();
    // The login window comes up beside the main window; with auto-login on, it logs straight in.
    main.connectionWindows().showLogin();
    session.server().login().autoLoginIfWanted();
    if (!problems.isEmpty()) {
        prompter.message(problems, QStringLiteral("Tavren"), tavren::Prompter::Icon::Warning);
    }
    return QApplication::exec();
}
