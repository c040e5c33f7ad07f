#include "kiv_process.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/system/habits.h"

namespace tool_test {
namespace {

/// The test's environment without what would let a user's own cameras and settings into it.
Words bare_environment() {
    Words result;
    for (const std::string& text : kiv_test::own_variables())
        if (text.rfind("KIV_", 0) != 0 && text.rfind("GENICAM_", 0) != 0 && text.rfind("COLUMNS=", 0) != 0)
            result.push_back(text);
    return result;
}

const nlohmann::json kCameras = nlohmann::json::parse(R"([
    {"id": "SIM0", "cameras": [{"serial": "A1", "user_id": "left", "model": "Colour", "color": true, "width": 320, "height": 240,
                                "frame_rate": 200, "url": "zip", "unplug_file": "unplugged"}]},
    {"id": "SIM1", "cameras": [{"serial": "B2", "user_id": "right", "model": "Grey", "color": false, "width": 320, "height": 240,
                                "frame_rate": 200, "url": "plain"}]}])");

/// Without what some systems end lines with.
std::string plain(std::string text) {
    std::erase(text, '\r');
    return text;
}

}  // namespace

Result Running::Wait() {
    const int exit = process_->Wait();
    return {exit, plain(kiv_test::read_file(out_)), plain(kiv_test::read_file(err_))};
}

Bench::Bench() : variables_(bare_environment()) {
    SetCameras(kCameras);
    SetVariable("KIV_SIM_CONFIG", In("cameras.json"));
    SetVariable("KIV_SIM_STATE", In("state"));
    SetVariable(kiv_test::cache_variable, In("cache"));
}

Result Bench::Kiv(const Words& arguments) { return Start(arguments)->Wait(); }

std::unique_ptr<Running> Bench::Start(const Words& arguments) {
    const std::string name = In("run" + std::to_string(++runs_));
    return std::make_unique<Running>(kiv_test::Process::Writing(KIV_TOOL, arguments, variables_, name + ".out", name + ".err"),
                                     name + ".out", name + ".err");
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
