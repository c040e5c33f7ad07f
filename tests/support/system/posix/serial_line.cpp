#include "support/system/serial_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <utility>

namespace kiv_test {
namespace {

speed_t speed_of(unsigned rate) {
    static const std::map<unsigned, speed_t> speeds{{9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},
                                                    {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600}};
    return speeds.at(rate);
}

}  // namespace

struct SerialLine::System {
    int master = -1, keeper = -1, stop = -1;
    std::atomic<speed_t> speed = B9600;
    std::string path;

    System() {
        master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) throw std::runtime_error("no pseudo-terminal");
        path = ptsname(master);
        // While one near end is open the far end lives, whatever the others do.
        keeper = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        tcgetattr(keeper, &settings);
        cfmakeraw(&settings);
        tcsetattr(keeper, TCSANOW, &settings);
        stop = eventfd(0, EFD_CLOEXEC);
    }
    ~System() {
        for (const int number : {master, keeper, stop})
            if (number >= 0) close(number);
    }
};

bool SerialLine::IsThere() { return true; }
bool SerialLine::IsExclusive() { return true; }

SerialLine::SerialLine() : system_(std::make_unique<System>()) {}
SerialLine::~SerialLine() = default;

const std::string& SerialLine::Path() const { return system_->path; }

SerialBytes SerialLine::Read() {
    for (;;) {
        std::array<pollfd, 2> watched{{{system_->stop, POLLIN, 0}, {system_->master, POLLIN, 0}}};
        if (poll(watched.data(), watched.size(), -1) < 0) continue;
        if (watched[0].revents != 0) return {};
        SerialBytes bytes(256);
        const ssize_t count = read(system_->master, bytes.data(), bytes.size());
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }
}

bool SerialLine::Write(const SerialBytes& bytes) {
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = write(system_->master, bytes.data() + sent, bytes.size() - sent);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

void SerialLine::HangUp() {
    close(std::exchange(system_->keeper, -1));
    close(std::exchange(system_->master, -1));
}

void SerialLine::Stop() {
    const std::uint64_t one = 1;
    if (write(system_->stop, &one, sizeof one) != sizeof one) std::abort();
}

void SerialLine::SetRate(unsigned rate) { system_->speed = speed_of(rate); }

bool SerialLine::IsTuned() const {
    termios settings{};
    return tcgetattr(system_->master, &settings) == 0 && cfgetospeed(&settings) == system_->speed;
}

}  // namespace kiv_test
