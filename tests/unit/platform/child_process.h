/// The helper program of these tests in a process of its own, talked to line by line.
#pragma once

#include <string>
#include <vector>

namespace kiv::test {

class ChildProcess {
public:
    /// Starts the helper with these arguments.
    explicit ChildProcess(std::vector<std::string> arguments);
    /// Ends the child whatever it does.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line that the child printed, to either of its outputs; empty when it ended.
    std::string ReadLine();
    /// Ends the child's input and waits for its end; answers its exit code, -1 when it did not exit by itself.
    int Finish();
    /// Ends the child as a crash would: nothing in it gets a chance to clean up.
    void Kill();

private:
    int Wait();
    int process_ = -1;
    int input_ = -1;
    int output_ = -1;
};

}  // namespace kiv::test
