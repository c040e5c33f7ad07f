// A frame grabber's serial library for tests: the standard's entry points over serial ports of the system.
//
// KIV_TEST_SERIAL_PORTS lists the ports as name=device=mask (of rates, hexadecimal), separated by ";". Built with
// SERIAL_LIBRARY_FIRST_GENERATION it has the four oldest entry points only, and a read that does not wait.
#include <kiv/platform/environment.h>
#include <kiv/platform/serial_port.h>

#include <cstring>
#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#define SERIAL_ENTRY extern "C" __attribute__((visibility("default")))

namespace {

[[maybe_unused]] constexpr int no_error = 0, buffer_too_small = -10001, port_in_use = -10003, timed_out = -10004,
                               invalid_index = -10005, invalid_reference = -10006, rate_not_supported = -10008;

struct Listed {
    std::string name, device;
    unsigned mask = 0;
};

std::vector<Listed> listed_ports() {
    std::vector<Listed> ports;
    std::istringstream list(kiv::platform::get_environment("KIV_TEST_SERIAL_PORTS").value_or(""));
    for (std::string entry; std::getline(list, entry, ';');) {
        std::istringstream fields(entry);
        Listed port;
        std::getline(fields, port.name, '=');
        std::getline(fields, port.device, '=');
        fields >> std::hex >> port.mask;
        ports.push_back(port);
    }
    return ports;
}

struct Port {
    explicit Port(const Listed& listed) : port(listed.device), mask(listed.mask) {}

    void Gather(std::chrono::milliseconds timeout) {
        std::byte bytes[256];
        const std::size_t count = port.Read(bytes, timeout);
        received.insert(received.end(), bytes, bytes + count);
    }

    kiv::platform::SerialPort port;
    unsigned mask;
    std::deque<std::byte> received;
};

template <class Work>
int with(void* reference, Work work) try {
    return reference ? work(*static_cast<Port*>(reference)) : invalid_reference;
} catch (const std::exception&) {
    return invalid_reference;
}

}  // namespace

SERIAL_ENTRY int clSerialInit(unsigned index, void** reference) try {
    const auto ports = listed_ports();
    if (index >= ports.size()) return invalid_index;
    *reference = std::make_unique<Port>(ports[index]).release();
    return no_error;
} catch (const std::exception&) {
    return port_in_use;
}

SERIAL_ENTRY void clSerialClose(void* reference) { std::unique_ptr<Port>(static_cast<Port*>(reference)); }

SERIAL_ENTRY int clSerialWrite(void* reference, char* bytes, unsigned* size, unsigned milliseconds) {
    return with(reference, [&](Port& port) {
        port.port.Write(std::as_bytes(std::span(bytes, *size)), std::chrono::milliseconds(milliseconds));
        return no_error;
    });
}

// All that was asked for, or nothing.
SERIAL_ENTRY int clSerialRead(void* reference, char* bytes, unsigned* size, unsigned milliseconds) {
    return with(reference, [&](Port& port) {
#ifdef SERIAL_LIBRARY_FIRST_GENERATION
        milliseconds = 0;
#endif
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        do port.Gather(std::chrono::milliseconds(milliseconds != 0 ? 1 : 0));
        while (port.received.size() < *size && std::chrono::steady_clock::now() < deadline);
        if (port.received.size() < *size) {
#ifdef SERIAL_LIBRARY_FIRST_GENERATION
            *size = 0;
            return no_error;
#else
            return timed_out;
#endif
        }
        for (unsigned i = 0; i < *size; ++i) {
            bytes[i] = std::to_integer<char>(port.received.front());
            port.received.pop_front();
        }
        return no_error;
    });
}

#ifndef SERIAL_LIBRARY_FIRST_GENERATION

namespace {

int give_text(const std::string& text, char* room, unsigned* size) {
    const unsigned needed = static_cast<unsigned>(text.size() + 1), capacity = *size;
    *size = needed;
    if (capacity < needed) return buffer_too_small;
    std::memcpy(room, text.c_str(), needed);
    return no_error;
}

}  // namespace

SERIAL_ENTRY int clGetManufacturerInfo(char* name, unsigned* size, unsigned* version) {
    *version = 4;
    return give_text("Test Grabbers", name, size);
}

SERIAL_ENTRY int clGetNumSerialPorts(unsigned* count) {
    *count = static_cast<unsigned>(listed_ports().size());
    return no_error;
}

SERIAL_ENTRY int clGetSerialPortIdentifier(unsigned index, char* name, unsigned* size) {
    const auto ports = listed_ports();
    return index < ports.size() ? give_text(ports[index].name, name, size) : invalid_index;
}

SERIAL_ENTRY int clGetNumBytesAvail(void* reference, unsigned* count) {
    return with(reference, [&](Port& port) {
        port.Gather(std::chrono::milliseconds(0));
        *count = static_cast<unsigned>(port.received.size());
        return no_error;
    });
}

SERIAL_ENTRY int clFlushPort(void* reference) {
    return with(reference, [](Port& port) {
        port.port.DiscardInput();
        port.received.clear();
        return no_error;
    });
}

SERIAL_ENTRY int clGetErrorText(int error, char* text, unsigned* size) {
    return give_text("test error " + std::to_string(error), text, size);
}

SERIAL_ENTRY int clGetSupportedBaudRates(void* reference, unsigned* mask) {
    return with(reference, [&](Port& port) {
        *mask = port.mask;
        return no_error;
    });
}

SERIAL_ENTRY int clSetBaudRate(void* reference, unsigned bit) {
    constexpr unsigned rates[] = {9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};
    return with(reference, [&](Port& port) {
        for (unsigned i = 0; i < 8; ++i) {
            if (bit != 1u << i || (port.mask & bit) == 0) continue;
            port.port.SetRate(rates[i]);
            return no_error;
        }
        return rate_not_supported;
    });
}

#endif
