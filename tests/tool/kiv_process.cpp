#include "kiv_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace tool_test {
namespace {

/// The test's environment without what would let a user's own cameras and settings into it.
Words bare_environment() {
    Words result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (text.rfind("KIV_", 0) != 0 && text.rfind("GENICAM_", 0) != 0 && text.rfind("COLUMNS=", 0) != 0)
            result.push_back(text);
    }
    return result;
}

std::vector<char*> pointers(Words& words) {
    std::vector<char*> result;
    for (std::string& word : words) result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

pid_t spawn(Words words, Words variables, const std::string& out, const std::string& err) {
    words.insert(words.begin(), KIV_TOOL);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t process = -1;
    const int error = posix_spawn(&process, KIV_TOOL, &files, nullptr, pointers(words).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) throw std::runtime_error("kiv cannot be started");
    return process;
}

const nlohmann::json kCameras = nlohmann::json::parse(R"([
    {"id": "SIM0", "cameras": [{"serial": "A1", "user_id": "left", "model": "Colour", "color": true, "width": 320, "height": 240,
                                "frame_rate": 200, "url": "zip", "unplug_file": "unplugged"}]},
    {"id": "SIM1", "cameras": [{"serial": "B2", "user_id": "right", "model": "Grey", "color": false, "width": 320, "height": 240,
                                "frame_rate": 200, "url": "plain"}]}])");

}  // namespace

Running::~Running() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void Running::PressCtrlC() const { kill(process_, SIGINT); }

Result Running::Wait() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), kiv_test::read_file(out_),
            kiv_test::read_file(err_)};
}

Bench::Bench() : variables_(bare_environment()) {
    SetCameras(kCameras);
    SetVariable("KIV_SIM_CONFIG", In("cameras.json"));
    SetVariable("KIV_SIM_STATE", In("state"));
    SetVariable("XDG_CACHE_HOME", In("cache"));
}

Result Bench::Kiv(const Words& arguments) { return Start(arguments)->Wait(); }

std::unique_ptr<Running> Bench::Start(const Words& arguments) {
    const std::string name = In("run" + std::to_string(++runs_));
    const pid_t process = spawn(arguments, variables_, name + ".out", name + ".err");
    return std::make_unique<Running>(process, name + ".out", name + ".err");
}

void Bench::SetCameras(const nlohmann::json& interfaces) const {
    Write("cameras.json", nlohmann::json{{"interfaces", interfaces}}.dump());
}

bool exists(const std::string& path) { return std::filesystem::exists(path); }

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace tool_test
