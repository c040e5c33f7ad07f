#include "features/config_info.h"

#include <kiv/camera.h>

namespace kiv {

namespace {

std::string text_of(const GenApi::Version_t& version) {
    return std::to_string(version.Major) + "." + std::to_string(version.Minor) + "." + std::to_string(version.SubMinor);
}

std::string genapi_version(GenApi::IDeviceInfo& device) {
    GenApi::Version_t version{};
    std::uint16_t build = 0;
    device.GetGenApiVersion(version, build);
    return text_of(version) + " build " + std::to_string(build);
}

template <void (GenApi::IDeviceInfo::*get)(GenApi::Version_t&)>
std::string version_text(GenApi::IDeviceInfo& device) {
    GenApi::Version_t version{};
    (device.*get)(version);
    return text_of(version);
}

template <GenICam::gcstring (GenApi::IDeviceInfo::*get)()>
std::string plain_text(GenApi::IDeviceInfo& device) {
    return (device.*get)().str();
}

using Reader = std::string (*)(GenApi::IDeviceInfo&);
constexpr Reader readers[] = {
    plain_text<&GenApi::IDeviceInfo::GetModelName>,
    plain_text<&GenApi::IDeviceInfo::GetVendorName>,
    plain_text<&GenApi::IDeviceInfo::GetToolTip>,
    plain_text<&GenApi::IDeviceInfo::GetStandardNameSpace>,
    genapi_version,
    version_text<&GenApi::IDeviceInfo::GetSchemaVersion>,
    version_text<&GenApi::IDeviceInfo::GetDeviceVersion>,
    plain_text<&GenApi::IDeviceInfo::GetProductGuid>,
    plain_text<&GenApi::IDeviceInfo::GetVersionGuid>,
};
static_assert(std::size(readers) == K_CONFIG_INFO_VERSION_GUID + 1);

}  // namespace

std::string config_info(GenApi::IDeviceInfo& device, std::uint32_t info) { return readers[info](device); }

}  // namespace kiv
