#include "core/LoginButton.h"

namespace tavren {

LoginButton LoginButton::login() {
    return {Kind::Login, QStringLiteral("&Login"),
            QStringLiteral("Press to login to the Tavren Chat Service!")};
}

LoginButton LoginButton::signUp() {
    return {Kind::SignUp, QStringLiteral("&Sign Up Now!!"), QStringLiteral("Press to sign up!")};
}

LoginButton LoginButton::cancel() {
    return {Kind::Cancel, QStringLiteral("Cancel"), QStringLiteral("Press to stop connecting.")};
}

LoginButton LoginButton::countdown(int seconds) {
    return {Kind::Countdown, QStringLiteral("Auto Reconnect (%1)").arg(seconds),
            QStringLiteral("Press to stop reconnecting.")};
}

}  // namespace tavren
