#include "kiv/platform/serial_port.h"

#include <algorithm>
#include <system_error>

#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

using std::chrono::milliseconds;

[[noreturn]] void give_up(DWORD error, const std::string& device, const char* what) {
    // In the words of the portable category, so that "in use" is the same on every system.
    const std::string text = "serial port '" + device + "' " + what;
    if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION)
        throw std::system_error(static_cast<int>(std::errc::device_or_resource_busy), std::generic_category(), text);
    throw std::system_error(static_cast<int>(error), std::system_category(), text);
}

}  // namespace

struct SerialPort::Device {
    std::string name;
    OwnedHandle file;
    DCB former;
    DCB present;

    Device(std::string device, OwnedHandle opened, const DCB& found, const DCB& wanted)
        : name(std::move(device)), file(std::move(opened)), former(found), present(wanted) {}
    ~Device() { SetCommState(file.get(), &former); }

    [[noreturn]] void GiveUp(const char* what) const { give_up(GetLastError(), name, what); }

    /// A read ends with the first bytes that are there, or after this time.
    void SetTimeouts(milliseconds timeout) const {
        const auto time = static_cast<DWORD>(std::clamp<std::int64_t>(timeout.count(), 1, 24 * 3600 * 1000));
        COMMTIMEOUTS timeouts{MAXDWORD, MAXDWORD, time, 0, time};
        if (!SetCommTimeouts(file.get(), &timeouts)) GiveUp("takes no time-outs");
    }
};

SerialPort::SerialPort(const std::string& device) {
    // The prefix is what makes COM10 and above files like the others.
    const std::wstring path = L"\\\\.\\" + wide_from_utf8(device);
    OwnedHandle file = owned_file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) give_up(GetLastError(), device, "cannot be opened");
    DCB former{};
    former.DCBlength = sizeof former;
    if (!GetCommState(file.get(), &former)) give_up(GetLastError(), device, "is none");
    DCB wanted = former;
    wanted.ByteSize = 8;
    wanted.Parity = NOPARITY;
    wanted.StopBits = ONESTOPBIT;
    wanted.fBinary = TRUE;
    wanted.fParity = wanted.fOutxCtsFlow = wanted.fOutxDsrFlow = wanted.fDsrSensitivity = FALSE;
    wanted.fOutX = wanted.fInX = wanted.fNull = wanted.fErrorChar = wanted.fAbortOnError = FALSE;
    wanted.fDtrControl = DTR_CONTROL_ENABLE;
    wanted.fRtsControl = RTS_CONTROL_ENABLE;
    device_ = std::make_unique<Device>(device, std::move(file), former, wanted);
    SetRate(9600);
    DiscardInput();
}

SerialPort::~SerialPort() = default;

void SerialPort::SetRate(unsigned bits_per_second) {
    DCB wanted = device_->present;
    wanted.BaudRate = bits_per_second;
    if (!SetCommState(device_->file.get(), &wanted)) device_->GiveUp("cannot run at this rate");
    device_->present = wanted;
}

std::size_t SerialPort::Read(std::span<std::byte> bytes, milliseconds timeout) {
    if (bytes.empty()) return 0;
    device_->SetTimeouts(timeout);
    DWORD count = 0;
    if (!ReadFile(device_->file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr))
        device_->GiveUp("cannot be read");
    return count;
}

void SerialPort::Write(std::span<const std::byte> bytes, milliseconds timeout) {
    device_->SetTimeouts(timeout);
    DWORD count = 0;
    if (!WriteFile(device_->file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr))
        device_->GiveUp("cannot be written");
    if (count != bytes.size()) give_up(ERROR_TIMEOUT, device_->name, "takes no bytes");
}

void SerialPort::DiscardInput() { PurgeComm(device_->file.get(), PURGE_RXCLEAR | PURGE_RXABORT); }

std::vector<std::string> list_serial_ports() {
    std::vector<std::string> ports;
    for (int number = 1; number <= 256; ++number) {
        const std::string name = "COM" + std::to_string(number);
        wchar_t target[512];
        if (QueryDosDeviceW(wide_from_utf8(name).c_str(), target, static_cast<DWORD>(std::size(target))) != 0)
            ports.push_back(name);
    }
    return ports;
}

}  // namespace kiv::platform
