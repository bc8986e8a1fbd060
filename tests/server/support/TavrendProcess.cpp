#include "server/support/TavrendProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace tavren::test {

namespace {

int exitCodeOf(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

std::filesystem::path TavrendProcess::binary() {
    const char* folder = std::getenv("TAVREN_BIN_DIR");
    return std::filesystem::path(folder ? folder : "bin") / "tavrend";
}

TavrendProcess::Result TavrendProcess::runToEnd(const std::vector<std::string>& arguments) {
    // The tests' arguments hold no quotes of their own.
    std::string command = "'" + binary().string() + "'";
    for (const std::string& argument : arguments) {
        command += " '" + argument + "'";
    }
    FILE* output = popen((command + " 2>&1").c_str(), "r");
    if (output == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    Result result;
    char buffer[4096];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, output)) > 0;) {
        result.output.append(buffer, count);
    }
    result.exitCode = exitCodeOf(pclose(output));
    return result;
}

TavrendProcess::TavrendProcess(const std::vector<std::string>& arguments,
                               const std::filesystem::path& logFile)
    : logFile_(logFile) {
    std::vector<std::string> all{binary().string(), "--listen", "127.0.0.1:0"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& argument : all) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, logFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int failed = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) {
        pid_ = -1;
        throw std::runtime_error("cannot start " + all[0]);
    }
    // The log names the port once the server is listening.
    static const std::regex listening("listening on \\S+:(\\d+)\\n");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::string text;
    std::smatch match;
    while (!std::regex_search(text = log(), match, listening)) {
        if (std::chrono::steady_clock::now() > deadline) {
            stop();
            throw std::runtime_error("tavrend did not start: " + text);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    port_ = static_cast<std::uint16_t>(std::stoi(match[1].str()));
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

void TavrendProcess::killAtOnce() {
    if (pid_ <= 0) {
        return;
    }
    kill(pid_, SIGKILL);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
}

std::string TavrendProcess::log() const {
    std::ifstream in(logFile_);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace tavren::test
