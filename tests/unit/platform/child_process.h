/// The helper program of these tests in a process of its own, talked to line by line.
#pragma once

#include <string>
#include <vector>

#include "support/system/process.h"

namespace kiv::test {

class ChildProcess {
public:
    /// Starts the helper with these arguments.
    explicit ChildProcess(const std::vector<std::string>& arguments)
        : process_(kiv_test::Process::Talking(KIV_TEST_HELPER, arguments)) {}

    /// The next line that the child printed, to either of its outputs; empty when it ended.
    std::string ReadLine() { return process_->ReadLine(); }
    /// Ends the child's input and waits for its end; answers its exit code, 1000 and more when it did not exit by itself.
    int Finish() {
        process_->EndInput();
        return process_->Wait();
    }
    /// Ends the child as a crash would: nothing in it gets a chance to clean up.
    void Kill() { process_->Kill(); }

private:
    std::unique_ptr<kiv_test::Process> process_;
};

}  // namespace kiv::test
