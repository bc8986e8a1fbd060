#include "server/accounts/PasswordWorker.h"

#include "server/accounts/PasswordHasher.h"

namespace tavren::server {

asio::awaitable<std::string> PasswordWorker::hash(std::string password, CancelFlag cancelled) {
    return run([password = std::move(password)] { return PasswordHasher::hash(password); },
               std::move(cancelled));
}

asio::awaitable<bool> PasswordWorker::verify(std::string storedHash, std::string password,
                                             CancelFlag cancelled) {
    return run(
        [storedHash = std::move(storedHash), password = std::move(password)] {
            return PasswordHasher::verify(storedHash, password);
        },
        std::move(cancelled));
}

asio::awaitable<void> PasswordWorker::verifyAgainstDecoy(std::string password,
                                                         CancelFlag cancelled) {
    return run([password = std::move(password)] { PasswordHasher::verifyAgainstDecoy(password); },
               std::move(cancelled));
}

}  // namespace tavren::server
