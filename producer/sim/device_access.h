/// Who may use a camera, among all processes of this user: locks on files that the system gives back when their holder dies.
///
///     <serial>.control         held by whoever opened the camera for writing
///     <serial>.reader0 ... 3   one is held by each reader; an exclusive owner holds all of them
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "GenTL/GenTL.h"
#include "kiv/platform/mapped_file.h"

namespace kivsim {

class DeviceAccess {
public:
    /// Throws ACCESS_DENIED when another owner stands in the way.
    static DeviceAccess Acquire(const std::filesystem::path& folder, const std::string& serial,
                                GenTL::DEVICE_ACCESS_FLAGS access);

    /// What an Acquire would find: READWRITE, READONLY or BUSY.
    static GenTL::DEVICE_ACCESS_STATUS Status(const std::filesystem::path& folder, const std::string& serial);

private:
    std::vector<kiv::platform::FileLock> locks_;
};

}  // namespace kivsim
