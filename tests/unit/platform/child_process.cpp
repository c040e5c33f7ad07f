#include "child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace kiv::test {

ChildProcess::ChildProcess(std::vector<std::string> arguments) {
    int to_child[2], from_child[2];
    if (pipe2(to_child, O_CLOEXEC) != 0 || pipe2(from_child, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for a child");
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, to_child[0], 0);
    posix_spawn_file_actions_adddup2(&files, from_child[1], 1);
    posix_spawn_file_actions_adddup2(&files, from_child[1], 2);
    arguments.insert(arguments.begin(), KIV_TEST_HELPER);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const int reason = posix_spawn(&process_, KIV_TEST_HELPER, &files, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    close(to_child[0]), close(from_child[1]);
    input_ = to_child[1];
    output_ = from_child[0];
    if (reason != 0) throw std::runtime_error("cannot start the helper program");
}

ChildProcess::~ChildProcess() {
    if (process_ > 0) Kill();
    if (input_ >= 0) close(input_);
    close(output_);
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (char c; read(output_, &c, 1) == 1;) {
        if (c == '\n') return line;
        line += c;
    }
    return line;
}

int ChildProcess::Finish() {
    close(input_);
    input_ = -1;
    return Wait();
}

void ChildProcess::Kill() {
    kill(process_, SIGKILL);
    Wait();
}

int ChildProcess::Wait() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace kiv::test
