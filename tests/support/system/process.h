/// Programs in processes of their own, for tests. posix/ and win32/ keep the same contract.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kiv_test {

class Process {
public:
    /// Starts the program with its input and both its outputs connected to this process. Throws std::runtime_error.
    static std::unique_ptr<Process> Talking(const std::string& program, const std::vector<std::string>& arguments);
    /// Starts the program with an empty input, its outputs going to two files, and no other variables ("NAME=value") than these.
    static std::unique_ptr<Process> Writing(const std::string& program, const std::vector<std::string>& arguments,
                                            const std::vector<std::string>& variables, const std::string& output,
                                            const std::string& errors);
    /// Ends the process if it is still there.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The next line that a talking program printed, to either of its outputs; empty when it ended.
    std::string ReadLine();
    void EndInput();
    /// As the user's Ctrl-C does, where there is a console to press it on.
    static bool CanInterrupt();
    void Interrupt();
    /// Ends it as a crash would: nothing in it gets a chance to clean up.
    void Kill();
    /// Waits for the end; answers the exit code, 1000 and more when it did not exit by itself.
    int Wait();

private:
    struct System;
    explicit Process(std::unique_ptr<System> system);
    std::unique_ptr<System> system_;
};

/// This process's number.
std::uint32_t own_process_number();
/// This process's environment, as "NAME=value".
std::vector<std::string> own_variables();

}  // namespace kiv_test
