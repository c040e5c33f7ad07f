/// The option --log, which all commands have: what the library does meanwhile, in a file.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

class LogOption {
public:
    void AddTo(CLI::App& app);
    /// Switches the log on when it was asked for. Throws when it cannot be written.
    void Begin() const;
    /// Ends it, with what was written safe in the file.
    ~LogOption();

private:
    std::string text_;
    bool producers_ = false;
};
