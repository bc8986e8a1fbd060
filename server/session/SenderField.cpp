#include "server/session/SenderField.h"

#include "server/session/Member.h"

namespace tavren::server {

std::string SenderField(const Member& sender) {
    const std::string& format = sender.account.nicknameFormat;
    if (format.empty() || format.find(':') != std::string::npos) {
        return sender.name();
    }
    return sender.name() + "\x01" + format;
}

}  // namespace tavren::server
