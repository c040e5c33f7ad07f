#include "CLProtocol/driver_directory.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/environment.h>

#include <algorithm>

#include "gencp_driver.h"

namespace CLProtocol {
namespace {

std::vector<std::string> built_in_templates() {
    const auto list = kiv::platform::get_environment("KIV_CAMERA_LINK_TEMPLATES");
    if (!list) return {any_manufacturer};
    std::vector<std::string> templates;
    for (std::size_t from = 0; from < list->size();) {
        const std::size_t end = std::min(list->find(';', from), list->size());
        if (end > from) templates.push_back(list->substr(from, end - from));
        from = end + 1;
    }
    return templates;
}

bool fits(const Driver& driver, const CDeviceID& id) {
    if (id.NamesADriver()) return driver.Directory() == id.DriverDirectory() && driver.FileName() == id.DriverFileName();
    return std::ranges::any_of(driver.Templates(), [&](const CDeviceID& offered) {
        return offered.Tokens().front() == any_manufacturer || offered.IsTemplateOf(id);
    });
}

}  // namespace

DriverDirectory::DriverDirectory() = default;
DriverDirectory::~DriverDirectory() = default;
DriverDirectory::DriverDirectory(DriverDirectory&&) noexcept = default;

DriverDirectory DriverDirectory::Find() {
    DriverDirectory found;
    found.drivers_.push_back(std::make_unique<GenCpDriver>(built_in_templates()));
    return found;
}

std::vector<CDeviceID> DriverDirectory::Templates() const {
    std::vector<CDeviceID> all;
    for (const auto& driver : drivers_) std::ranges::move(driver->Templates(), std::back_inserter(all));
    return all;
}

const Driver& DriverDirectory::For(const CDeviceID& id) const {
    const auto found = std::ranges::find_if(drivers_, [&](const auto& driver) { return fits(*driver, id); });
    if (found == drivers_.end()) throw GenICam::InvalidArgumentException("no driver for '" + id.GetDeviceID() + "'");
    return **found;
}

}  // namespace CLProtocol
