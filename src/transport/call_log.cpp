#include "transport/call_log.h"

#include <kiv/log/log.h>
#include <kiv/log/text.h>

#include <cstring>

namespace kiv {

namespace {

struct StatusName {
    GenTL::GC_ERROR status;
    const char* name;
};
constexpr StatusName status_names[] = {{GenTL::GC_ERR_SUCCESS, "SUCCESS"},
                                       {GenTL::GC_ERR_ERROR, "ERROR"},
                                       {GenTL::GC_ERR_NOT_INITIALIZED, "NOT_INITIALIZED"},
                                       {GenTL::GC_ERR_NOT_IMPLEMENTED, "NOT_IMPLEMENTED"},
                                       {GenTL::GC_ERR_RESOURCE_IN_USE, "RESOURCE_IN_USE"},
                                       {GenTL::GC_ERR_ACCESS_DENIED, "ACCESS_DENIED"},
                                       {GenTL::GC_ERR_INVALID_HANDLE, "INVALID_HANDLE"},
                                       {GenTL::GC_ERR_INVALID_ID, "INVALID_ID"},
                                       {GenTL::GC_ERR_NO_DATA, "NO_DATA"},
                                       {GenTL::GC_ERR_INVALID_PARAMETER, "INVALID_PARAMETER"},
                                       {GenTL::GC_ERR_IO, "IO"},
                                       {GenTL::GC_ERR_TIMEOUT, "TIMEOUT"},
                                       {GenTL::GC_ERR_ABORT, "ABORT"},
                                       {GenTL::GC_ERR_INVALID_BUFFER, "INVALID_BUFFER"},
                                       {GenTL::GC_ERR_NOT_AVAILABLE, "NOT_AVAILABLE"},
                                       {GenTL::GC_ERR_INVALID_ADDRESS, "INVALID_ADDRESS"},
                                       {GenTL::GC_ERR_BUFFER_TOO_SMALL, "BUFFER_TOO_SMALL"},
                                       {GenTL::GC_ERR_INVALID_INDEX, "INVALID_INDEX"},
                                       {GenTL::GC_ERR_PARSING_CHUNK_DATA, "PARSING_CHUNK_DATA"},
                                       {GenTL::GC_ERR_INVALID_VALUE, "INVALID_VALUE"},
                                       {GenTL::GC_ERR_RESOURCE_EXHAUSTED, "RESOURCE_EXHAUSTED"},
                                       {GenTL::GC_ERR_OUT_OF_MEMORY, "OUT_OF_MEMORY"},
                                       {GenTL::GC_ERR_BUSY, "BUSY"}};

std::string address_text(const void* address) { return address ? log::hex(reinterpret_cast<std::uintptr_t>(address)) : "null"; }

}  // namespace

std::string status_text(GenTL::GC_ERROR status) {
    for (auto& known : status_names)
        if (known.status == status) return std::string(known.name) + " (" + std::to_string(status) + ")";
    return std::to_string(status);
}

void CallArgument::AppendTo(std::string& line, bool succeeded) const {
    switch (kind_) {
        case Kind::number:
            line += std::to_string(number_);
            return;
        case Kind::count:
            line += std::to_string(static_cast<std::uint64_t>(number_));
            return;
        case Kind::address:
            line += address_text(pointer_);
            return;
        case Kind::text:
            line += pointer_ ? "\"" + std::string(static_cast<const char*>(pointer_)) + "\"" : "null";
            return;
        case Kind::number_result:
        case Kind::address_result:
            break;
    }
    if (!pointer_ || !succeeded) {
        line += pointer_ ? "-> ?" : "null";
        return;
    }
    line += "-> ";
    if (kind_ == Kind::address_result) {
        line += address_text(*static_cast<void* const*>(pointer_));
        return;
    }
    std::uint64_t value = 0;  // of any width: the rest stays 0
    std::memcpy(&value, pointer_, static_cast<std::size_t>(number_));
    line += std::to_string(value);
}

std::string CallLog::Outcome(GenTL::GC_ERROR status) const {
    const auto time = std::chrono::steady_clock::now() - begin_;
    return ") = " + status_text(status) + " in " +
           std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(time).count()) + " us";
}

void CallLog::Say(GenTL::GC_ERROR status, const std::string& line) const {
    auto level = log::Level::debug;
    if (is_landmark(name_)) level = status == GenTL::GC_ERR_SUCCESS ? log::Level::info : log::Level::warn;
    log::write(log::Category::gen_tl, level, line);
}

void CallLog::Returned(GenTL::GC_ERROR status, std::initializer_list<CallArgument> arguments) const noexcept try {
    const auto outcome = Outcome(status);
    std::string line = name_;
    line += '(';
    for (const auto& argument : arguments) {
        if (&argument != arguments.begin()) line += ", ";
        argument.AppendTo(line, status == GenTL::GC_ERR_SUCCESS);
    }
    Say(status, line + outcome);
} catch (...) {
}

void CallLog::PortReturned(GenTL::GC_ERROR status, GenTL::PORT_HANDLE port, std::uint64_t address, const void* bytes,
                           const std::size_t* size) const noexcept try {
    const auto outcome = Outcome(status);
    const bool is_known = status == GenTL::GC_ERR_SUCCESS && bytes && size;
    Say(status, std::string(name_) + "(" + address_text(port) + ", " + log::hex(address) + ", " +
                    (size ? std::to_string(*size) + " bytes" : "null") + outcome +
                    (is_known ? ": " + log::hex_bytes(bytes, *size) : ""));
} catch (...) {
}

void CallLog::Threw() const noexcept try {
    log::write(log::Category::gen_tl, log::Level::warn, std::string(name_) + " threw an exception");
} catch (...) {
}

}  // namespace kiv
