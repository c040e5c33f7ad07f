#include "camera/port.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include <cstdarg>
#include <cstdio>

namespace GenICam::Factory {

namespace {

struct ErrorWord {
    K_STATUS_CODES status;
    const char* word;
};
constexpr ErrorWord error_words[] = {
    {K_ST_INVALID_ADDRESS, "Invalid Address"},
    {K_ST_INVALID_BUFFER_SIZE, "Invalid Buffer Size"},
    {K_ST_TIMEOUT, "Timeout"},
    {K_ST_INVALID_PARAMETER, "Invalid Parameter"},
    {K_ST_NO_DATA, "No Data"},
    {K_ST_INVALID_ID, "Invalid ID"},
    {K_ST_INVALID_HANDLE, "Invalid Handle"},
    {K_ST_ACCESS_DENIED, "Access Denied"},
    {K_ST_ERROR, "Generic Error"},
    {K_ST_FILE_IO, "File IO"},
    {K_ST_INVALID_FILENAME, "Invalid Filename"},
};

/// One of the four transfers. The line numbers are an interface: support teams recognise the operation by them.
struct Operation {
    const char* call;
    const char* word;
    unsigned line;
};
constexpr Operation read_operation{"ReadData", "Read", 109};
constexpr Operation write_operation{"WriteData", "Write", 166};
constexpr Operation read_register_operation{"ReadData", "ReadRegister", 223};
constexpr Operation write_register_operation{"WriteData", "WriteRegister", 280};

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...) {
    std::string text(256, '\0');
    for (;;) {
        va_list arguments;
        va_start(arguments, format);
        int needed = std::vsnprintf(text.data(), text.size(), format, arguments);
        va_end(arguments);
        if (needed >= 0 && static_cast<std::size_t>(needed) < text.size()) {
            text.resize(static_cast<std::size_t>(needed));
            return text;
        }
        text.resize(text.size() * 2);
    }
}

std::string reason(K_STATUS_CODES status) {
    for (auto& known : error_words)
        if (known.status == status) return std::string(known.word) + " Error";
    return "unknown error";
}

constexpr GenTL::GC_ERROR closed = K_ST_INVALID_HANDLE;

void require_transferred(GenTL::GC_ERROR status, const Operation& operation, int64_t address, int64_t length) {
    if (status == GenTL::GC_ERR_SUCCESS) return;
    auto message = formatted("%s returned %s in %s. Addr=0x%04llx, Length=%lld\n", operation.call, reason(status).c_str(),
                             operation.word, static_cast<unsigned long long>(address), static_cast<long long>(length));
    kiv::platform::debug_print(message);
    throw RuntimeException(message, "MyPortImp", operation.line);
}

}  // namespace

MyPortImp::MyPortImp(const CTLWrapper& producer, GenTL::PORT_HANDLE port)
    : port_(port), read_(producer.GCReadPort), write_(producer.GCWritePort) {}

void MyPortImp::Read(void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<std::size_t>(length);
    auto status = connected_ ? read_(port_, static_cast<uint64_t>(address), buffer, &size) : closed;
    require_transferred(status, read_operation, address, length);
}

void MyPortImp::Write(const void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<std::size_t>(length);
    auto status = connected_ ? write_(port_, static_cast<uint64_t>(address), buffer, &size) : closed;
    require_transferred(status, write_operation, address, length);
}

void MyPortImp::ReadRegister(void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<std::size_t>(length);
    auto status = connected_ ? read_(port_, static_cast<uint64_t>(address), buffer, &size) : closed;
    require_transferred(status, read_register_operation, address, length);
}

void MyPortImp::WriteRegister(const void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<std::size_t>(length);
    auto status = connected_ ? write_(port_, static_cast<uint64_t>(address), buffer, &size) : closed;
    require_transferred(status, write_register_operation, address, length);
}

}  // namespace GenICam::Factory
