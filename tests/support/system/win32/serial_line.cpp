#include "support/system/serial_line.h"

#include <kiv/platform/environment.h>
#include <kiv/platform/mapped_file.h>
#include <kiv/platform/paths.h>
#include <kiv/platform/serial_port.h>

#include <atomic>
#include <optional>
#include <span>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace kiv_test {
namespace {

using kiv::platform::FileLock;
using kiv::platform::SerialPort;

std::string known_lines() { return kiv::platform::get_environment("KIV_TEST_SERIAL_LINES").value_or(""); }

}  // namespace

struct SerialLine::System {
    std::string path;
    std::optional<FileLock> lock;
    std::optional<SerialPort> port;
    std::atomic<bool> stop = false;
};

bool SerialLine::IsThere() { return !known_lines().empty(); }

bool SerialLine::IsExclusive() {
    const SerialLine line;
    const SerialPort first(line.Path());
    try {
        const SerialPort second(line.Path());
        return false;
    } catch (const std::system_error&) {
        return true;
    }
}

SerialLine::SerialLine() : system_(std::make_unique<System>()) {
    std::istringstream lines(known_lines());
    for (std::string line; std::getline(lines, line, ';');) try {
            const auto middle = line.find('=');
            const std::string far_end = line.substr(middle + 1);
            // Not every system keeps a port for its first opener.
            system_->lock = FileLock::TryAcquire(kiv::platform::join_path(kiv::platform::temp_folder(), "kiv-test-" + far_end));
            if (!system_->lock) continue;
            system_->path = line.substr(0, middle);
            system_->port.emplace(far_end);
            return;
        } catch (const std::system_error&) {  // another test's
        }
    throw std::runtime_error("no serial line is free");
}

SerialLine::~SerialLine() = default;

const std::string& SerialLine::Path() const { return system_->path; }

SerialBytes SerialLine::Read() {
    SerialBytes bytes(256);
    std::size_t count = 0;
    while (count == 0 && !system_->stop)
        count = system_->port->Read(std::as_writable_bytes(std::span(bytes)), std::chrono::milliseconds(50));
    bytes.resize(count);
    return bytes;
}

bool SerialLine::Write(const SerialBytes& bytes) try {
    system_->port->Write(std::as_bytes(std::span(bytes)), std::chrono::seconds(10));
    return true;
} catch (const std::system_error&) {
    return false;
}

void SerialLine::HangUp() { system_->port.reset(); }
void SerialLine::Stop() { system_->stop = true; }
void SerialLine::SetRate(unsigned rate) { system_->port->SetRate(rate); }

// What connects the two ends lets nothing through at different rates.
bool SerialLine::IsTuned() const { return true; }

}  // namespace kiv_test
