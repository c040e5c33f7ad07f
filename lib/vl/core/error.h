/// Failures of the imaging library: thrown inside, a status and a text of the calling thread outside.
#pragma once

#include <VL.h>

#include <stdexcept>
#include <string>

namespace kiv::vl {

class Error : public std::runtime_error {
public:
    Error(VL_STATUS status, const std::string& text) : std::runtime_error(text), status_(status) {}
    VL_STATUS Status() const noexcept { return status_; }

private:
    VL_STATUS status_;
};

/// "640 x 480 BayerRG8" and the like read better in a message when every part writes them alike.
std::string size_text(std::uint32_t width, std::uint32_t height);
/// 0x01080001
std::string code_text(std::uint64_t code);

/// Remembers a failure for vlGetLastErrorText; cut where it does not fit.
void set_last_error(const char* function, const char* text) noexcept;
const char* last_error_text() noexcept;

/// What the exception being handled means to the caller. Remembers its text. Only inside a catch block.
VL_STATUS status_of_current_exception(const char* function) noexcept;

/// Runs the body of an exported function. Nothing that is thrown leaves it.
template <class Body>
VL_STATUS guarded(const char* function, Body&& body) noexcept {
    try {
        body();
        return VL_ST_SUCCESS;
    } catch (...) {
        return status_of_current_exception(function);
    }
}

/// Refuses a null argument by its name.
inline void refuse_null(const void* argument, const char* name) {
    if (argument == nullptr) throw Error(VL_ST_INVALID_PARAMETER, std::string(name) + " is null");
}

template <class T>
T& required(T* argument, const char* name) {
    refuse_null(argument, name);
    return *argument;
}

}  // namespace kiv::vl
