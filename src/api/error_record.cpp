#include "api/error_record.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace kiv::api {

namespace {

// Two threads that fail at once leave the text of one of them. The lock only keeps the record whole.
std::mutex record_lock;
K_GC_ERROR_INFO record;

template <std::size_t N>
void put(char (&field)[N], const char* text) {
    auto length = std::min(std::strlen(text), N - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
}

}  // namespace

void record_genicam_error(const char* description, const char* node) noexcept {
    std::lock_guard lock(record_lock);
    put(record.sDescription, description);
    put(record.sNodeName, node);
}

void record_genicam_error(const GenICam::GenericException& error) noexcept {
    record_genicam_error(error.GetDescription(), error.GetNodeName());
}

void copy_error_record(K_GC_ERROR_INFO& info) noexcept {
    std::lock_guard lock(record_lock);
    info = record;
}

}  // namespace kiv::api
