/// Running kiv: a bench with simulated cameras, and what a run printed and returned.
#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/system/process.h"
#include "support/temp_folder.h"

namespace tool_test {

using Words = std::vector<std::string>;

struct Result {
    int exit = -1;
    std::string out;
    std::string err;

    /// Throws (and so fails the test) when the output is no JSON.
    nlohmann::json Json() const { return nlohmann::json::parse(out); }
};

/// A kiv that runs beside the test. The destructor ends it, whatever state it is in.
class Running {
public:
    Running(std::unique_ptr<kiv_test::Process> process, std::string out, std::string err)
        : process_(std::move(process)), out_(std::move(out)), err_(std::move(err)) {}

    void PressCtrlC() const { process_->Interrupt(); }
    Result Wait();

private:
    std::unique_ptr<kiv_test::Process> process_;
    std::string out_, err_;
};

/// A temporary folder with two small fast cameras, which nobody else sees: serial numbers A1 (colour, user name "left", unplugged
/// while the file "unplugged" exists) and B2 (grey, user name "right").
class Bench {
public:
    Bench();

    Result Kiv(const Words& arguments);
    std::unique_ptr<Running> Start(const Words& arguments);
    /// Replaces the cameras by those of a configuration file's "interfaces".
    void SetCameras(const nlohmann::json& interfaces) const;
    /// For the runs that follow.
    void SetVariable(const std::string& name, const std::string& value) { variables_.push_back(name + "=" + value); }

    std::string In(const std::string& name) const { return folder_.In(name); }
    std::string Write(const std::string& name, const std::string& text) const { return folder_.Write(name, text); }
    std::string Read(const std::string& name) const { return kiv_test::read_file(In(name)); }
    const kiv_test::TempFolder& Folder() const { return folder_; }

private:
    kiv_test::TempFolder folder_;
    Words variables_;
    int runs_ = 0;
};

bool exists(const std::string& path);

/// Waits until it is so. False after half a minute.
bool eventually(const std::function<bool()>& condition);

}  // namespace tool_test
