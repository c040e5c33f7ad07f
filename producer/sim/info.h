/// What info calls answer, and the two-call rule by which texts and infos go out to the consumer.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "failure.h"

namespace kivsim {

/// A value with its INFO_DATATYPE, as the bytes that the consumer's buffer gets.
class Info {
public:
    static Info Text(std::string_view text);
    static Info Bool(bool value) { return Of(GenTL::INFO_DATATYPE_BOOL8, static_cast<uint8_t>(value)); }
    static Info Int32(int32_t value) { return Of(GenTL::INFO_DATATYPE_INT32, value); }
    static Info Uint32(uint32_t value) { return Of(GenTL::INFO_DATATYPE_UINT32, value); }
    static Info Uint64(uint64_t value) { return Of(GenTL::INFO_DATATYPE_UINT64, value); }
    static Info Size(size_t value) { return Of(GenTL::INFO_DATATYPE_SIZET, value); }
    static Info Pointer(const void* value) { return Of(GenTL::INFO_DATATYPE_PTR, value); }
    static Info Bytes(std::string_view bytes) { return Info(GenTL::INFO_DATATYPE_BUFFER, std::string(bytes)); }

    GenTL::INFO_DATATYPE Type() const { return type_; }
    const std::string& Content() const { return bytes_; }

private:
    Info(GenTL::INFO_DATATYPE type, std::string bytes) : type_(type), bytes_(std::move(bytes)) {}

    template <typename T>
    static Info Of(GenTL::INFO_DATATYPE type, T value) {
        static_assert(std::is_trivially_copyable_v<T>);
        std::string bytes(sizeof value, '\0');
        std::memcpy(bytes.data(), &value, sizeof value);
        return Info(type, std::move(bytes));
    }

    GenTL::INFO_DATATYPE type_;
    std::string bytes_;
};

/// The pointers that a consumer hands in: null and all-ones are refused with INVALID_PARAMETER, `optional` lets null pass.
void check_pointer(const void* pointer, const char* name, bool optional);

template <typename T>
T& mandatory(T* pointer, const char* name) {
    check_pointer(pointer, name, false);
    return *pointer;
}
std::string_view mandatory_text(const char* text, const char* name);

/// The two-call rule. A refused call writes nothing.
void write_bytes(std::string_view bytes, void* buffer, size_t* size);
void write_text(std::string_view text, char* buffer, size_t* size);
void write_info(const Info& info, GenTL::INFO_DATATYPE* type, void* buffer, size_t* size);

[[noreturn]] void fail_unknown_command(const char* what, int32_t command);

}  // namespace kivsim
