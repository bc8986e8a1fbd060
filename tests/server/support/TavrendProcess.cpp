#include "server/support/TavrendProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace tavren::test {

namespace {

pid_t spawn(const std::vector<std::string>& arguments, int stdoutFd, int stderrFd) {
    std::vector<std::string> all{TavrendProcess::binary().string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& argument : all) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, stdoutFd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, stderrFd, STDERR_FILENO);
    pid_t pid = -1;
    const int status = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        throw std::runtime_error("cannot start " + all[0]);
    }
    return pid;
}

int exitCodeOf(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Reads one line from `fd`, giving up after `timeout`.
std::string readLine(int fd, std::chrono::milliseconds timeout) {
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (line.empty() || line.back() != '\n') {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd poller{fd, POLLIN, 0};
        if (left.count() <= 0 || poll(&poller, 1, static_cast<int>(left.count())) <= 0) {
            break;
        }
        char c;
        if (read(fd, &c, 1) != 1) {
            break;
        }
        line += c;
    }
    return line;
}

}  // namespace

std::filesystem::path TavrendProcess::binary() {
    const char* folder = std::getenv("TAVREN_BIN_DIR");
    return std::filesystem::path(folder ? folder : "bin") / "tavrend";
}

TavrendProcess::Result TavrendProcess::runToEnd(const std::vector<std::string>& arguments) {
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        throw std::runtime_error("pipe failed");
    }
    const pid_t pid = spawn(arguments, pipeFds[1], pipeFds[1]);
    close(pipeFds[1]);
    Result result;
    char buffer[4096];
    ssize_t count;
    while ((count = read(pipeFds[0], buffer, sizeof buffer)) > 0) {
        result.output.append(buffer, static_cast<std::size_t>(count));
    }
    close(pipeFds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    result.exitCode = exitCodeOf(status);
    return result;
}

TavrendProcess::TavrendProcess(const std::vector<std::string>& arguments,
                               const std::filesystem::path& logFile)
    : logFile_(logFile) {
    std::vector<std::string> all{"--listen", "127.0.0.1:0"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        throw std::runtime_error("pipe failed");
    }
    const int logFd = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_ = spawn(all, pipeFds[1], logFd);
    close(pipeFds[1]);
    close(logFd);
    const std::string line = readLine(pipeFds[0], std::chrono::seconds(10));
    close(pipeFds[0]);
    const auto colon = line.rfind(':');
    if (line.rfind("listening on ", 0) != 0 || colon == std::string::npos) {
        stop();
        throw std::runtime_error("tavrend did not start: " + log());
    }
    port_ = static_cast<std::uint16_t>(std::stoi(line.substr(colon + 1)));
}

TavrendProcess::~TavrendProcess() {
    stop();
}

int TavrendProcess::stop(std::chrono::milliseconds grace) {
    if (pid_ <= 0) {
        return -1;
    }
    kill(pid_, SIGTERM);
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + grace;
    while (waitpid(pid_, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid_, SIGKILL);
            waitpid(pid_, &status, 0);
            pid_ = -1;
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    pid_ = -1;
    return exitCodeOf(status);
}

std::string TavrendProcess::log() const {
    std::ifstream in(logFile_);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace tavren::test
