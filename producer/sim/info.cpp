#include "info.h"

namespace kivsim {

Info Info::Text(std::string_view text) {
    std::string bytes(text);
    bytes.push_back('\0');
    return Info(GenTL::INFO_DATATYPE_STRING, std::move(bytes));
}

void check_pointer(const void* pointer, const char* name, bool optional) {
    if (pointer == nullptr && optional) return;
    const auto address = reinterpret_cast<uintptr_t>(pointer);
    if (address != 0 && address != UINTPTR_MAX) return;
    fail(GenTL::GC_ERR_INVALID_PARAMETER, std::string("Argument ") + name + " is no valid pointer");
}

std::string_view mandatory_text(const char* text, const char* name) {
    check_pointer(text, name, false);
    return text;
}

void write_bytes(std::string_view bytes, void* buffer, size_t* size) {
    check_pointer(buffer, "buffer", true);
    size_t& capacity = mandatory(size, "piSize");
    if (buffer && capacity < bytes.size())
        fail(GenTL::GC_ERR_BUFFER_TOO_SMALL,
             "The buffer holds " + std::to_string(capacity) + " bytes, " + std::to_string(bytes.size()) + " are needed");
    if (buffer) std::memcpy(buffer, bytes.data(), bytes.size());
    capacity = bytes.size();
}

void write_text(std::string_view text, char* buffer, size_t* size) { write_bytes(Info::Text(text).Content(), buffer, size); }

void write_info(const Info& info, GenTL::INFO_DATATYPE* type, void* buffer, size_t* size) {
    GenTL::INFO_DATATYPE& reported = mandatory(type, "piType");
    write_bytes(info.Content(), buffer, size);
    reported = info.Type();
}

void fail_unknown_command(const char* what, int32_t command) {
    fail(GenTL::GC_ERR_NOT_IMPLEMENTED, std::string(what) + " does not know info command " + std::to_string(command));
}

}  // namespace kivsim
