/// A small GenTL consumer: the entry points of a producer and the shortest way to ask it something.
#pragma once

#include <GenTL/GenTL.h>
#include <GenTL/extensions.h>
#include <kiv/platform/dynamic_library.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace kiv::test {

/// One pointer for each function of the interface, by its name.
class EntryPoints {
public:
    explicit EntryPoints(const std::string& path);

#define KIV_DECLARE_ENTRY(name, arguments) GenTL::P##name name = nullptr;
    GENTL_FUNCTION_LIST(KIV_DECLARE_ENTRY)
    /// Null in a producer that keeps to the standard.
    GENTL_EXTENSION_LIST(KIV_DECLARE_ENTRY)
#undef KIV_DECLARE_ENTRY

private:
    platform::DynamicLibrary library_;
};

/// What the two calls of an info function brought; `call(type, buffer, size)` is the function with all but its last arguments.
template <typename Call>
std::string ask(Call call, GenTL::INFO_DATATYPE expected_type, GenTL::GC_ERROR* status = nullptr) {
    GenTL::INFO_DATATYPE type = -1;
    size_t size = 0;
    GenTL::GC_ERROR result = call(&type, nullptr, &size);
    std::string bytes(size, '\0');
    if (result == GenTL::GC_ERR_SUCCESS) result = call(&type, bytes.data(), &size);
    if (status) *status = result;
    if (result != GenTL::GC_ERR_SUCCESS && status) return {};
    if (result != GenTL::GC_ERR_SUCCESS) throw std::runtime_error("status " + std::to_string(result));
    if (size != bytes.size()) throw std::runtime_error("the two calls disagree about the size");
    if (type != expected_type) throw std::runtime_error("data type " + std::to_string(type));
    return bytes;
}

template <typename Call>
std::string ask_text(Call call) {
    const std::string bytes = ask(call, GenTL::INFO_DATATYPE_STRING);
    if (bytes.empty() || bytes.find('\0') != bytes.size() - 1)
        throw std::runtime_error("the text does not end with its only NUL");
    return bytes.substr(0, bytes.size() - 1);
}

template <typename T, typename Call>
T ask_value(Call call, GenTL::INFO_DATATYPE type) {
    const std::string bytes = ask(call, type);
    T value{};
    if (bytes.size() != sizeof value) throw std::runtime_error("a value of " + std::to_string(bytes.size()) + " bytes");
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

/// The same for texts that come without a data type (identifiers).
template <typename Call>
std::string ask_id(Call call) {
    return ask_text([&](GenTL::INFO_DATATYPE* type, void* buffer, size_t* size) {
        *type = GenTL::INFO_DATATYPE_STRING;
        return call(static_cast<char*>(buffer), size);
    });
}

}  // namespace kiv::test
