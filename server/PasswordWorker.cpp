#include "server/PasswordWorker.h"

#include "server/PasswordHasher.h"

namespace tavren::server {


asio::awaitable<std::string> PasswordWorker::hash(std::string password) {
    return run([password = std::move(password)] { return PasswordHasher::hash(password); });
}

asio::awaitable<bool> PasswordWorker::verify(std::string storedHash, std::string password) {
    return run([storedHash = std::move(storedHash), password = std::move(password)] {
        return PasswordHasher::verify(storedHash, password);
    });
}

asio::awaitable<void> PasswordWorker::verifyAgainstDecoy(std::string password) {
    return run([password = std::move(password)] { PasswordHasher::verifyAgainstDecoy(password); });
}

}  // namespace tavren::server
