/// The serial library of a frame grabber's maker: its ports, through the entry points that the Camera Link standard gives them.
///
/// Libraries of the first generation have no more than init, read, write and close. They run at 9600 baud and tell no names.
/// Nothing is said about threads in these libraries, so that all calls into one of them are made under one lock.
#pragma once

#include <kiv/platform/dynamic_library.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "CLProtocol/serial.h"

namespace CLProtocol {

class GrabberLibrary : public std::enable_shared_from_this<GrabberLibrary> {
public:
    /// Throws LoadError, also for a library that lacks one of the four entry points.
    static std::shared_ptr<GrabberLibrary> Load(const std::string& path);

    std::string Manufacturer();
    /// The names of the ports in the order of their indexes.
    std::vector<std::string> PortNames();
    /// Throws RuntimeException: in use, no such port, or whatever else the library says.
    std::unique_ptr<Serial> Open(unsigned index);

private:
    friend class GrabberSerial;

    explicit GrabberLibrary(const std::string& path);
    [[noreturn]] void GiveUp(int error, const char* what);
    std::string ErrorText(int error);
    unsigned CountPorts();

    kiv::platform::DynamicLibrary library_;
    std::mutex lock_;

    int (*init_)(unsigned index, void** port);
    int (*read_)(void* port, char* bytes, unsigned* size, unsigned milliseconds);
    int (*write_)(void* port, char* bytes, unsigned* size, unsigned milliseconds);
    void (*close_)(void* port);
    // Null in libraries of the first generation.
    int (*manufacturer_info_)(char* name, unsigned* size, unsigned* version);
    int (*num_ports_)(unsigned* count);
    int (*port_identifier_)(unsigned index, char* name, unsigned* size);
    int (*bytes_available_)(void* port, unsigned* count);
    int (*flush_)(void* port);
    int (*error_text_)(int error, char* text, unsigned* size);
    int (*supported_rates_)(void* port, unsigned* mask);
    int (*set_rate_)(void* port, unsigned bit);
};

/// Whether a file's name is one of these libraries', whatever the system: "clser", three characters of the maker's choice, and
/// the ending of a library; before it "lib" and behind it "_w64" are known too. Case does not matter.
bool is_grabber_library_name(std::string_view file_name);

}  // namespace CLProtocol
