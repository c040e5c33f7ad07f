#include "kiv/platform/serial_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "posix/file_descriptor.h"

namespace kiv::platform {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Rate {
    unsigned bits_per_second;
    speed_t code;
};
constexpr Rate rates[] = {{9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},
                          {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600}};

[[noreturn]] void give_up(int error, const std::string& device, const char* what) {
    throw std::system_error(error, std::generic_category(), "serial port '" + device + "' " + what);
}

FileDescriptor open_device(const std::string& device) {
    // Without O_NONBLOCK opening may wait for a carrier, or for ever on what is no terminal at all.
    FileDescriptor opened(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!opened) give_up(errno, device, "cannot be opened");
    if (isatty(opened.Get()) == 0) give_up(ENOTTY, device, "is none");
    // The lock holds even where the terminal's own exclusive mode lets a privileged second opener in.
    if (flock(opened.Get(), LOCK_EX | LOCK_NB) != 0) give_up(EBUSY, device, "is in use");
    return opened;
}

termios raw_settings(termios settings) {
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | CSTOPB);
    settings.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    return settings;
}

}  // namespace

struct SerialPort::Device {
    std::string name;
    FileDescriptor file;
    termios former;
    termios present;

    Device(std::string device, FileDescriptor opened, const termios& found)
        : name(std::move(device)), file(std::move(opened)), former(found), present(raw_settings(found)) {}
    ~Device() { tcsetattr(file.Get(), TCSANOW, &former); }

    /// False: the time ran out. A device that is gone is reported by whoever reads or writes next.
    bool WaitFor(short what, Clock::time_point deadline) const {
        for (;;) {
            const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
            pollfd watched{file.Get(), what, 0};
            const int ready = poll(&watched, 1, static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 24 * 3600 * 1000)));
            if (ready > 0) return true;
            if (ready < 0 && errno != EINTR) give_up(errno, name, "cannot be waited for");
            if (Clock::now() >= deadline) return false;
        }
    }
};

SerialPort::SerialPort(const std::string& device) {
    FileDescriptor file = open_device(device);
    termios former{};
    if (tcgetattr(file.Get(), &former) != 0) give_up(errno, device, "does not tell its settings");
    device_ = std::make_unique<Device>(device, std::move(file), former);
    SetRate(9600);
    DiscardInput();
}

SerialPort::~SerialPort() = default;

void SerialPort::SetRate(unsigned bits_per_second) {
    const auto* const rate = std::ranges::find(rates, bits_per_second, &Rate::bits_per_second);
    if (rate == std::end(rates)) give_up(EINVAL, device_->name, "knows no such rate");
    const int number = device_->file.Get();
    termios wanted = device_->present;
    cfsetispeed(&wanted, rate->code);
    cfsetospeed(&wanted, rate->code);
    termios got{};
    // The system reports success when it could do any part of it, and takes the nearest rate that the hardware has.
    if (tcsetattr(number, TCSANOW, &wanted) != 0 || tcgetattr(number, &got) != 0) give_up(errno, device_->name, "cannot be set");
    if (cfgetospeed(&got) != rate->code) {
        tcsetattr(number, TCSANOW, &device_->present);
        give_up(EINVAL, device_->name, "cannot run at this rate");
    }
    device_->present = wanted;
}

std::size_t SerialPort::Read(std::span<std::byte> bytes, milliseconds timeout) {
    if (bytes.empty()) return 0;
    const auto deadline = Clock::now() + timeout;
    while (device_->WaitFor(POLLIN, deadline)) {
        const ssize_t count = read(device_->file.Get(), bytes.data(), bytes.size());
        if (count > 0) return static_cast<std::size_t>(count);
        if (count == 0) give_up(EIO, device_->name, "was disconnected");
        if (errno != EAGAIN && errno != EINTR) give_up(errno, device_->name, "cannot be read");
    }
    return 0;
}

void SerialPort::Write(std::span<const std::byte> bytes, milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (!bytes.empty()) {
        if (!device_->WaitFor(POLLOUT, deadline)) give_up(ETIMEDOUT, device_->name, "takes no bytes");
        const ssize_t count = write(device_->file.Get(), bytes.data(), bytes.size());
        if (count > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            give_up(count == 0 ? EIO : errno, device_->name, "cannot be written");
    }
}

void SerialPort::DiscardInput() { tcflush(device_->file.Get(), TCIFLUSH); }

std::vector<std::string> list_serial_ports() {
    namespace fs = std::filesystem;
    std::vector<std::string> ports;
    std::error_code failed;
    for (fs::directory_iterator entry("/sys/class/tty", failed), end; !failed && entry != end; entry.increment(failed)) {
        std::error_code ignored;
        if (!fs::exists(entry->path() / "device", ignored)) continue;  // a console or a pseudo-terminal
        int chip = 1;
        std::ifstream(entry->path() / "type") >> chip;
        if (chip != 0) ports.push_back("/dev/" + entry->path().filename().string());  // 0: a number without a port behind it
    }
    std::ranges::sort(ports);
    return ports;
}

}  // namespace kiv::platform
