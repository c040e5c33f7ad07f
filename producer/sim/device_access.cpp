#include "device_access.h"

#include <chrono>
#include <thread>

#include "failure.h"
#include "kiv/platform/paths.h"

namespace kivsim {
namespace {

using kiv::platform::FileLock;

constexpr int readers = 4;

std::optional<FileLock> try_lock(const std::filesystem::path& folder, const std::string& name) {
    return FileLock::TryAcquire(kiv::platform::utf8_from_path(folder / name));
}

std::optional<FileLock> try_control(const std::filesystem::path& folder, const std::string& serial) {
    return try_lock(folder, serial + ".control");
}

std::optional<FileLock> try_reader(const std::filesystem::path& folder, const std::string& serial, int reader) {
    return try_lock(folder, serial + ".reader" + std::to_string(reader));
}

std::optional<FileLock> try_any_reader(const std::filesystem::path& folder, const std::string& serial) {
    for (int reader = 0; reader < readers; ++reader)
        if (auto lock = try_reader(folder, serial, reader)) return lock;
    return std::nullopt;
}

/// All locks that this access needs, or fewer when some are taken: then none are kept.
std::vector<FileLock> try_all(const std::filesystem::path& folder, const std::string& serial, GenTL::DEVICE_ACCESS_FLAGS access) {
    std::vector<FileLock> locks;
    const auto keep = [&](std::optional<FileLock> lock) {
        if (lock) locks.push_back(std::move(*lock));
        return lock.has_value();
    };
    bool complete = true;
    if (access == GenTL::DEVICE_ACCESS_READONLY) complete = keep(try_any_reader(folder, serial));
    if (access != GenTL::DEVICE_ACCESS_READONLY) complete = keep(try_control(folder, serial));
    for (int reader = 0; complete && access == GenTL::DEVICE_ACCESS_EXCLUSIVE && reader < readers; ++reader)
        complete = keep(try_reader(folder, serial, reader));
    if (!complete) locks.clear();
    return locks;
}

}  // namespace

DeviceAccess DeviceAccess::Acquire(const std::filesystem::path& folder, const std::string& serial,
                                   GenTL::DEVICE_ACCESS_FLAGS access) {
    // Another process that asks for the status holds a lock for an instant, and so must not be taken for an owner.
    constexpr int attempts = 5;
    DeviceAccess result;
    for (int attempt = 0; attempt < attempts && result.locks_.empty(); ++attempt) {
        if (attempt > 0) std::this_thread::sleep_for(std::chrono::milliseconds(4));
        result.locks_ = try_all(folder, serial, access);
    }
    if (result.locks_.empty()) fail(GenTL::GC_ERR_ACCESS_DENIED, "Camera " + serial + " is opened by another process");
    return result;
}

GenTL::DEVICE_ACCESS_STATUS DeviceAccess::Status(const std::filesystem::path& folder, const std::string& serial) {
    if (!try_any_reader(folder, serial)) return GenTL::DEVICE_ACCESS_STATUS_BUSY;
    if (!try_control(folder, serial)) return GenTL::DEVICE_ACCESS_STATUS_READONLY;
    return GenTL::DEVICE_ACCESS_STATUS_READWRITE;
}

}  // namespace kivsim
