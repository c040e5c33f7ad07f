#include "support/system/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

extern char** environ;

namespace kiv_test {
namespace {

std::vector<char*> pointers(std::vector<std::string>& words) {
    std::vector<char*> result;
    for (std::string& word : words) result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void Take(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    void Open(int number, const std::string& path, int flags) {
        posix_spawn_file_actions_addopen(&actions_, number, path.c_str(), flags, 0600);
    }
    pid_t Start(const std::string& program, std::vector<std::string> arguments, char** variables) const {
        arguments.insert(arguments.begin(), program);
        pid_t process = -1;
        const int reason = posix_spawn(&process, program.c_str(), &actions_, nullptr, pointers(arguments).data(), variables);
        return reason == 0 ? process : -1;
    }

private:
    posix_spawn_file_actions_t actions_;
};

}  // namespace

struct Process::System {
    pid_t process = -1;
    int input = -1;
    int output = -1;
};

Process::Process(std::unique_ptr<System> system) : system_(std::move(system)) {}

std::unique_ptr<Process> Process::Talking(const std::string& program, const std::vector<std::string>& arguments) {
    int to_child[2], from_child[2];
    if (pipe2(to_child, O_CLOEXEC) != 0 || pipe2(from_child, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for a child");
    FileActions files;
    files.Take(to_child[0], STDIN_FILENO);
    files.Take(from_child[1], STDOUT_FILENO);
    files.Take(from_child[1], STDERR_FILENO);
    auto system = std::make_unique<System>(System{files.Start(program, arguments, environ), to_child[1], from_child[0]});
    close(to_child[0]), close(from_child[1]);
    std::unique_ptr<Process> started(new Process(std::move(system)));
    if (started->system_->process < 0) throw std::runtime_error("cannot start " + program);
    return started;
}

std::unique_ptr<Process> Process::Writing(const std::string& program, const std::vector<std::string>& arguments,
                                          const std::vector<std::string>& variables, const std::string& output,
                                          const std::string& errors) {
    FileActions files;
    files.Open(STDIN_FILENO, "/dev/null", O_RDONLY);
    files.Open(STDOUT_FILENO, output, O_WRONLY | O_CREAT | O_TRUNC);
    files.Open(STDERR_FILENO, errors, O_WRONLY | O_CREAT | O_TRUNC);
    std::vector<std::string> own_copy = variables;
    const pid_t process = files.Start(program, arguments, pointers(own_copy).data());
    if (process < 0) throw std::runtime_error("cannot start " + program);
    return std::unique_ptr<Process>(new Process(std::make_unique<System>(System{process})));
}

Process::~Process() {
    if (system_->process > 0) Kill();
    EndInput();
    if (system_->output >= 0) close(system_->output);
}

std::string Process::ReadLine() {
    std::string line;
    for (char c; read(system_->output, &c, 1) == 1 && c != '\n';) line += c;
    return line;
}

void Process::EndInput() {
    if (system_->input >= 0) close(std::exchange(system_->input, -1));
}

bool Process::CanInterrupt() { return true; }

void Process::Interrupt() { kill(system_->process, SIGINT); }

void Process::Kill() {
    kill(system_->process, SIGKILL);
    Wait();
}

int Process::Wait() {
    int status = 0;
    waitpid(std::exchange(system_->process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

std::uint32_t own_process_number() { return static_cast<std::uint32_t>(getpid()); }

std::vector<std::string> own_variables() {
    std::vector<std::string> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) variables.emplace_back(*entry);
    return variables;
}

}  // namespace kiv_test
