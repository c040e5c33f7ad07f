/// The drivers that are there: who can speak with which cameras.
///
/// Built in is the driver of the GenICam control protocol. Its templates are those that KIV_CAMERA_LINK_TEMPLATES lists in short
/// form, separated by ";": without that variable "GenCP", which stands for the cameras of all makers.
#pragma once

#include <memory>
#include <vector>

#include "CLProtocol/device_id.h"

namespace CLProtocol {

class Driver;

class DriverDirectory {
public:
    /// Looks at the settings anew.
    static DriverDirectory Find();
    ~DriverDirectory();
    DriverDirectory(DriverDirectory&&) noexcept;

    std::vector<CDeviceID> Templates() const;
    /// The driver that an ID names, or else the first one with a template for it. Throws when there is none.
    const Driver& For(const CDeviceID& id) const;

private:
    DriverDirectory();

    std::vector<std::unique_ptr<const Driver>> drivers_;
};

}  // namespace CLProtocol
