/// The far end of a serial line, where a test's camera sits. posix/ makes a pseudo-terminal for each; win32/ takes one of the
/// lines that KIV_TEST_SERIAL_LINES names ("COM31=COM32;COM33=COM34": whatever connects the first of each with the second).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kiv_test {

using SerialBytes = std::vector<std::uint8_t>;

class SerialLine {
public:
    /// Whether there are lines on this system.
    static bool IsThere();
    /// Whether the system keeps a port for its first opener.
    static bool IsExclusive();
    /// Throws std::runtime_error.
    SerialLine();
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    /// What the system calls the near end.
    const std::string& Path() const;
    /// Waits for bytes; none come when the line is dead or Stop was called.
    SerialBytes Read();
    /// False when the line is dead.
    bool Write(const SerialBytes& bytes);
    /// Kills the line.
    void HangUp();
    /// Ends Read, from any thread.
    void Stop();
    /// Of this end, in bits per second.
    void SetRate(unsigned rate);
    /// Whether the near end works at the rate of this one.
    bool IsTuned() const;

private:
    struct System;
    std::unique_ptr<System> system_;
};

}  // namespace kiv_test
