#include "core/LoginFlow.h"

#include <QUrl>
#include <algorithm>

#include "config/Settings.h"
#include "core/ClientVersion.h"
#include "core/Prompter.h"
#include "core/SavedAccounts.h"
#include "core/ServerConnection.h"
#include "core/UpdateDownload.h"
#include "core/ServerLink.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace out = protocol::client_to_server;

namespace {
const QString kNotRegistered = QStringLiteral("Nickname not registered!");
const QString kCreationError = QStringLiteral("Account Creation Error!");
const QString kRegistered = QStringLiteral("Registration Success!");
const QString kLoginTitle = QStringLiteral("Tavren Login");
const QString kSignUpTitle = QStringLiteral("Tavren Sign Up");
const QString kOfflineCaption = QStringLiteral("Tavren Chat Offline (?\?)");
}  // namespace

LoginFlow::LoginFlow(Settings& settings, Prompter& prompter, ServerLink& link,
                     ServerConnection& connection, SavedAccounts& accounts,
                     const ConnectionOptions& options, QObject* parent)
    : QObject(parent),
      settings_(settings),
      prompter_(prompter),
      link_(link),
      connection_(connection),
      accounts_(accounts),
      options_(options) {
    countdown_.setObjectName(QStringLiteral("Timer3"));
    countdown_.setInterval(options.countdownTickMs);
    connect(&countdown_, &QTimer::timeout, this, &LoginFlow::countdownTick);
    connect(&connection_, &ServerConnection::linkReady, this, &LoginFlow::onLinkReady);
    connect(&connection_, &ServerConnection::connectFailed, this, &LoginFlow::resetButton);
    connect(&connection_, &ServerConnection::wentOffline, this, &LoginFlow::onWentOffline);
    connect(&accounts_, &SavedAccounts::changed, this, [this] {
        if (selectedRow_ >= accounts_.rowCount()) {
            select(accounts_.rowCount() - 1);
        }
    });
    // The first saved account is the one used last.
    selectedRow_ = accounts_.rowCount() > 1 ? 1 : 0;
    button_ = LoginButton::forSelection(selectedRow_ == 0);
}

QString LoginFlow::clientVersion() {
    return QStringLiteral("%1.%2.%3")
        .arg(kClientVersionMajor)
        .arg(kClientVersionMinor)
        .arg(kClientVersionRevision);
}

void LoginFlow::select(int row) {
    row = std::clamp(row, 0, accounts_.rowCount() - 1);
    const bool changed = row != selectedRow_;
    selectedRow_ = row;
    if (button_.kind == LoginButton::Kind::Login || button_.kind == LoginButton::Kind::SignUp) {
        resetButton();
    }
    if (changed) {
        emit selectionChanged(row);
    }
}

void LoginFlow::setButton(const LoginButton& button) {
    if (button == button_) {
        return;
    }
    button_ = button;
    emit buttonChanged(button_);
}

void LoginFlow::resetButton() {
    setButton(LoginButton::forSelection(accounts_.isNewUserRow(selectedRow_)));
}

void LoginFlow::clickLoginButton() {
    switch (button_.kind) {
        case LoginButton::Kind::Login:
            countdown_.start();
            pressLogin();
            return;
        case LoginButton::Kind::SignUp: {
            const Prompter::Answer answer = prompter_.askYesNoCancel(
                QStringLiteral(
                    "Do you already have an account registered with Tavren Chat Service?"),
                QStringLiteral("Aready a Tavren Member?"));
            if (answer == Prompter::Answer::No) {
                mode_ = Mode::New;
                userName_ = SavedAccounts::newUserName();
                password_.clear();
                if (connection_.ConnectToServer()) {
                    setButton(LoginButton::cancel());
                }
            } else if (answer == Prompter::Answer::Yes) {
                resetButton();
                emit addAccountRequested();
            }
            return;
        }
        case LoginButton::Kind::Cancel:
        case LoginButton::Kind::Countdown:
            logOff();
            return;
    }
}

void LoginFlow::pressLogin() {
    mode_ = Mode::Normal;
    const SavedAccounts::Account account = accounts_.row(selectedRow_);
    userName_ = account.name;
    password_ = account.password;
    remaining_ = options_.reconnectCountdown;
    if (connection_.ConnectToServer()) {
        setButton(LoginButton::cancel());
    } else {
        resetButton();
    }
}

void LoginFlow::autoLoginIfWanted() {
    if (settings_.values().autoLogin && !accounts_.isNewUserRow(selectedRow_) &&
        button_.kind == LoginButton::Kind::Login) {
        clickLoginButton();
    }
}

void LoginFlow::disarm() {
    countdown_.stop();
    settings_.setAutoReconnectArmed(false);
    connection_.setLoggedInBefore(false);
}

void LoginFlow::logOff() {
    disarm();
    connection_.GoOffline(false);
    resetButton();
}

void LoginFlow::onLinkReady() {
    const QString version = clientVersion();
    if (mode_ == Mode::New) {
        // Nobody is online while signing up; the connected time starts with the new member's
        // login.
        connection_.clock().reset();
        link_.SendPacket(version, out::kVersionBeforeSignUp);
        emit conversationWindowsClosing();
        emit signUpRequested();
        return;
    }
    link_.SendPacket(version, out::kVersionBeforeLogin);
}

void LoginFlow::onWentOffline() {
    setOnline(false);
    resetButton();
    if (connection_.autoReloginEnabled()) {
        remaining_ = options_.reconnectCountdown;
        setButton(LoginButton::countdown(remaining_));
        if (!countdown_.isActive()) {
            countdown_.start();
        }
    }
}

void LoginFlow::countdownTick() {
    if (connection_.phase() != ServerConnection::Phase::Closed) {
        remaining_ = options_.reconnectCountdown;
        return;
    }
    if (!connection_.autoReloginEnabled()) {
        return;
    }
    if (--remaining_ > 0) {
        setButton(LoginButton::countdown(remaining_));
        return;
    }
    pressLogin();
}

QString LoginFlow::statusText() const {
    switch (link_.socketState()) {
        case QAbstractSocket::HostLookupState:
            return QStringLiteral("Resolving..");
        case QAbstractSocket::ConnectingState:
            return QStringLiteral("Connecting..");
        case QAbstractSocket::ConnectedState:
            return link_.tunnelPending() ? QStringLiteral("Connection Pending")
                                         : QStringLiteral("Connected!");
        case QAbstractSocket::BoundState:
            return QStringLiteral("Connection in Use");
        case QAbstractSocket::ListeningState:
            return QStringLiteral("Listening");
        case QAbstractSocket::ClosingState:
            return QStringLiteral("Connection Closed");
        case QAbstractSocket::UnconnectedState:
            break;
    }
    // Offline: say what is happening and, after a failure, what went wrong in words.
    const QString problem = connection_.lastProblem();
    if (button_.kind == LoginButton::Kind::Countdown) {
        const QString waiting = QStringLiteral("Auto Reconnect: waiting to try again");
        return problem.isEmpty() ? waiting + QStringLiteral("..")
                                 : waiting + QStringLiteral(" (") + problem + QLatin1Char(')');
    }
    if (!problem.isEmpty()) {
        return QStringLiteral("Error! ") + problem;
    }
    switch (link_.lastEnding()) {
        case ServerLink::Ending::Error:
            return QStringLiteral("Error!");
        case ServerLink::Ending::RemoteClosed:
            return QStringLiteral("Server Closed");
        case ServerLink::Ending::None:
            // Nothing tried yet (a connect is reset to None, and ends in one of the others).
            return QStringLiteral("Not connected");
        case ServerLink::Ending::Closed:
            break;
    }
    return QStringLiteral("Connection Closed");
}

QString LoginFlow::onlineCaption() const {
    return online_ ? QStringLiteral("Tavren Chat Online (%1)").arg(userName_) : kOfflineCaption;
}

void LoginFlow::setOnline(bool online) {
    if (online == online_) {
        return;
    }
    online_ = online;
    emit onlineChanged(online_);
    emit captionChanged(onlineCaption());
}

void LoginFlow::sendCredentials() {
    link_.SendPacket(userName_ + QLatin1Char(':') + password_, out::kCredentials);
}

void LoginFlow::onHello(const ServerMessage& message) {
    helloText_ = message.payload;
    sendCredentials();
}

void LoginFlow::onUpdateNotice(const ServerMessage& message) {
    const QStringList fields = message.payload.split(QLatin1Char(';'));
    const QString version = fields.value(0).trimmed();
    // Only a web address is offered: a server must not make the client open a file, a program or
    // any other scheme the desktop happens to handle.
    const QUrl offered(fields.value(1).trimmed(), QUrl::StrictMode);
    const bool webAddress =
        offered.isValid() && !offered.host().isEmpty() &&
        (offered.scheme() == QLatin1String("http") || offered.scheme() == QLatin1String("https"));
    const QString url = webAddress ? offered.toString() : QString();
    // A third field, "sha256=" + hex, names the installer's checksum (servers of old send two).
    const QString sha256 = QString::fromLatin1(UpdateDownload::parseChecksum(fields.value(2)));
    // The notice stands in for the hello; the login goes on whatever the user answers, and
    // without waiting for the answer.
    sendCredentials();
    if (!version.isEmpty() && !settings_.isNagSuppressed(version)) {
        // The address is shown, so the member sees where the download would come from.
        const QString download = url.isEmpty()
                                     ? QStringLiteral("The server named no download address.")
                                     : QStringLiteral("It can be downloaded from:\n%1").arg(url);
        prompter_.askYesNoCancelLater(
            QStringLiteral("A newer Tavren client (version %1) is available.\n%2\n\n"
                           "Download it now? Choose No to stop reminding you of this version.")
                .arg(version, download),
            QStringLiteral("Upgrade to %1 Now").arg(version),
            [this, version, url, sha256](Prompter::Answer answer) {
                if (answer == Prompter::Answer::Yes && !url.isEmpty()) {
                    emit updateDownloadRequested(url, version, sha256);
                } else if (answer == Prompter::Answer::No) {
                    settings_.suppressNag(version);
                }
            });
    }
}

void LoginFlow::onAccountData(const ServerMessage& message) {
    accountData_ = message.payload;
    const QString name = message.payload.section(QLatin1Char(';'), 0, 0);
    if (!name.isEmpty() && name.compare(userName_, Qt::CaseInsensitive) == 0) {
        userName_ = name;  // the server's spelling of the name
    }
    setOnline(true);
    link_.SendPacket(QStringLiteral("OK"), out::kAccountRefreshOk);
}

void LoginFlow::onLoginAccepted(const ServerMessage&) {
    connection_.loginAccepted();
    if (!connection_.clock().running()) {
        connection_.clock().start();  // the login that ends a sign-up
    }
    settings_.setAutoReconnectArmed(true);
    setOnline(true);
    const int row = accounts_.markUsed(userName_);
    if (row > 0) {
        select(row);
    }
    setButton(LoginButton::cancel());
    emit loginAccepted();
    link_.SendPacket(QStringLiteral("Mail-Recv"), out::kMailReceive);
}

void LoginFlow::onSessionSettings(const ServerMessage& message) {
    const QString nickname = message.payload.section(QLatin1Char(';'), 0, 0).trimmed();
    if (!nickname.isEmpty()) {
        settings_.setNickname(nickname);
        emit nicknameChanged(nickname);
    }
}

QString LoginFlow::checkSignUp(const QString& name, const QString& password,
                               const QString& confirmation, const QString& email) {
    const auto hasSeparator = [](const QString& text) {
        return text.contains(QLatin1Char(':')) || text.contains(QLatin1Char(';'));
    };
    if (name.trimmed().isEmpty()) {
        return QStringLiteral("Please choose a nickname.");
    }
    if (password.isEmpty()) {
        return QStringLiteral("Please choose a password.");
    }
    if (password != confirmation) {
        return QStringLiteral("The two passwords do not match.");
    }
    if (email.trimmed().isEmpty() || !email.contains(QLatin1Char('@'))) {
        return QStringLiteral("Please enter your e-mail address.");
    }
    if (hasSeparator(name) || hasSeparator(password) || hasSeparator(email)) {
        return QStringLiteral(
            "Nickname, password and e-mail address cannot contain \":\" or \";\".");
    }
    for (const QString& problem :
         {WireText::refusalForWire(name.trimmed(), QStringLiteral("nickname")),
          WireText::refusalForWire(password, QStringLiteral("password")),
          WireText::refusalForWire(email.trimmed(), QStringLiteral("e-mail address"))}) {
        if (!problem.isEmpty()) {
            return problem;
        }
    }
    return QString();
}

void LoginFlow::submitSignUp(const QString& name, const QString& password, const QString& email) {
    if (!connection_.linkUp()) {
        prompter_.message(
            QStringLiteral("The connection to the server was lost. Please try again."),
            kSignUpTitle, Prompter::Icon::Warning);
        return;
    }
    signUpName_ = name.trimmed();
    signUpPassword_ = password;
    link_.SendPacket(signUpName_ + QLatin1Char(':') + password + QLatin1Char(':') + email.trimmed(),
                     out::kRegisterAccount);
}

void LoginFlow::cancelSignUp() {
    signUpName_.clear();
    signUpPassword_.clear();
    logOff();
}

void LoginFlow::onLoginResult(const ServerMessage& message) {
    const QString& text = message.payload;
    if (text.startsWith(kNotRegistered)) {
        // Whatever was wrong (name or password), the same refusal: back to the sign-up state.
        logOff();
        select(0);
        prompter_.message(kNotRegistered, kLoginTitle, Prompter::Icon::Warning);
        return;
    }
    // Sign-up results count only while this connection is signing up; anything else is shown
    // and otherwise ignored, so a confused server cannot change whose login this is.
    const bool signingUp = mode_ == Mode::New && !signUpName_.isEmpty();
    if (signingUp && text.startsWith(kCreationError)) {
        const QString reason =
            text.mid(kCreationError.size()).section(QLatin1Char(':'), 1).trimmed();
        prompter_.message(
            reason.isEmpty() ? kCreationError : kCreationError + QLatin1Char('\n') + reason,
            kSignUpTitle, Prompter::Icon::Warning);
        // The connection waits for another try; the dialog comes back with what was typed.
        if (connection_.linkUp()) {
            emit signUpRequested();
        }
        return;
    }
    if (signingUp && text.startsWith(kRegistered)) {
        prompter_.message(kRegistered, kSignUpTitle, Prompter::Icon::Information);
        int row = accounts_.findRow(signUpName_);
        if (row > 0) {
            row = accounts_.modify(row, signUpName_, signUpPassword_);
        } else {
            row = accounts_.add(signUpName_, signUpPassword_);
        }
        if (row > 0) {
            select(row);
        }
        // The new member logs in on the same connection.
        mode_ = Mode::Normal;
        userName_ = signUpName_;
        password_ = signUpPassword_;
        signUpName_.clear();
        signUpPassword_.clear();
        sendCredentials();
        return;
    }
    prompter_.message(text, kLoginTitle, Prompter::Icon::Information);
}

}  // namespace tavren
