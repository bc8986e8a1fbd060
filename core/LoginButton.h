#pragma once

#include <QString>

namespace tavren {

// What the login window's button (XPButton4) says and does next.
struct LoginButton {
    enum class Kind { Login, SignUp, Cancel, Countdown };

    Kind kind = Kind::Login;
    QString caption;
    QString hint;

    static LoginButton login();
    static LoginButton signUp();
    static LoginButton cancel();
    static LoginButton countdown(int seconds);
    // The resting state for the selected row.
    static LoginButton forSelection(bool newUserSelected) {
        return newUserSelected ? signUp() : login();
    }

    bool operator==(const LoginButton&) const = default;
};

}  // namespace tavren
