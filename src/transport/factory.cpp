#include "transport/factory.h"

#include <GenICam/exceptions.h>
#include <kiv/log/log.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/keep_awake.h>
#include <kiv/platform/paths.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "transport/camera_id.h"
#include "transport/enumeration.h"
#include "transport/open_interfaces.h"
#include "transport/sdk_paths.h"

namespace GenICam::Factory {

namespace {

template <std::size_t N>
void put(char (&field)[N], std::string_view text) {
    field[text.copy(field, N - 1)] = '\0';
}

bool opens_for_reading(const std::string& path) {
    if (path.empty()) return false;
    auto native = kiv::platform::path_from_utf8(path);
    std::error_code ignored;
    return std::filesystem::is_regular_file(native, ignored) && std::ifstream(native).is_open();
}

// Numbers that callers use, and the producer's numbers for them.
struct InfoCommand {
    std::uint32_t asked;
    GenTL::DEVICE_INFO_CMD sent;
};
constexpr InfoCommand info_commands[] = {{1, 1}, {2, 2}, {6, 6}, {7, 7}, {1001, 1003}, {1002, 1004}};
constexpr std::uint32_t device_part_command = 1003;

void tell_refusal(const std::string& key, const K_PRODUCER_REPORT& report) {
    const auto line = "producer \"" + key + "\" (" + report.sPath + ") refused: " + report.sReason;
    kiv::platform::debug_print("CFactory: " + line + "\n");
    kiv::log::write(kiv::log::Category::gen_tl, kiv::log::Level::warn, line);
}

void tell_cameras(const std::vector<std::string>& cameras) {
    if (!kiv::log::wanted(kiv::log::Category::gen_tl, kiv::log::Level::info)) return;
    std::string line = std::to_string(cameras.size()) + " camera(s) listed";
    for (auto& each : cameras) line += (&each == &cameras.front() ? ": " : "; ") + each;
    kiv::log::write(kiv::log::Category::gen_tl, kiv::log::Level::info, line);
}

GenTL::DEVICE_INFO_CMD producer_command(std::uint32_t asked) {
    for (auto& command : info_commands)
        if (command.asked == asked) return command.sent;
    return GenTL::DEVICE_INFO_ID;
}

}  // namespace

std::string find_registry_file(const char* path) {
    for (const char* candidate : {path ? path : "", "$(KIV_SDK_DATA)\\Registry_64.xml", "$(KIV_SDK_BIN_64)\\Registry.xml"}) {
        auto expanded = kiv::expand_path(candidate);
        if (opens_for_reading(expanded)) return expanded;
    }
    return {};
}

CFactory::CFactory(std::string registry_path, ReadOwnNodeMap read_own_node_map)
    : registry_path_(std::move(registry_path)), read_own_node_map_(std::move(read_own_node_map)), registry_(registry_path_) {
    if (!registry_.HasList())
        kiv::platform::debug_print("CFactory: registry \"" + registry_path_ + "\": " + registry_.Problem() + "\n");
    kiv::platform::keep_system_awake();
    keep_awake_count_ = 1;
}

CFactory::~CFactory() {
    producers_.clear();
    if (keep_awake_count_ < 2) {
        kiv::platform::let_system_sleep();
        keep_awake_count_ = 0;
    } else {
        --keep_awake_count_;
    }
}

K_STATUS_CODES CFactory::Update(bool& changed) {
    GEV::CAutoLock lock(section_);
    changed = false;
    if (auto status = Discover(); status != K_ST_SUCCESS) return status;
    std::vector<std::string> found;
    for (auto& [key, producer] : producers_) kiv::list_cameras(key, *producer, force_ip_, found);
    changed = found != cameras_;
    if (changed) tell_cameras(found);
    cameras_ = std::move(found);
    listed_ = true;
    return K_ST_SUCCESS;
}

K_STATUS_CODES CFactory::EnsureListed() {
    GEV::CAutoLock lock(section_);
    bool changed = false;
    return listed_ ? K_ST_SUCCESS : Update(changed);
}

K_STATUS_CODES CFactory::Discover() {
    if (!registry_.HasList()) return K_ST_INVALID_ADDRESS;
    reports_.clear();
    for (std::uint32_t index = 0; index < registry_.Count(); ++index) {
        kiv::ProducerRegistry::Element element;
        if (auto status = registry_.Read(index, element); status != K_ST_SUCCESS) return status;
        auto& report = reports_.emplace_back();
        put(report.sKey, element.key);
        put(report.sPath, element.path);
        try {
            report.status = Bind(element, report);
        } catch (const GenericException& error) {
            // Ends the discovery: the record of the error names what the producer's own description got wrong.
            report.status = K_ST_GC_ERROR;
            put(report.sReason, error.GetDescription());
            throw;
        }
        if (report.status != K_ST_SUCCESS) tell_refusal(element.key, report);
    }
    return K_ST_SUCCESS;
}

K_STATUS_CODES CFactory::Bind(const kiv::ProducerRegistry::Element& element, K_PRODUCER_REPORT& report) {
    if (!element.enabled) {
        report.disabled = 1;
        put(report.sReason, "The registry switches this producer off.");
        return K_ST_SUCCESS;
    }
    auto path = kiv::find_producer_file(element.path);
    put(report.sPath, path);
    auto known = producers_.find(element.key);
    if (known == producers_.end()) {
        auto producer = std::make_unique<CTLWrapper>();
        if (auto status = producer->Load(path); status != K_ST_SUCCESS) {
            put(report.sReason, producer->Refusal());
            return status;
        }
        producer->SetRegistryFlag(element.flag);
        read_own_node_map_(*producer);
        known = producers_.emplace(element.key, std::move(producer)).first;
    } else if (known->second->Path() != path) {
        put(report.sReason, "An earlier producer has the same key; the first one wins.");
        return K_ST_RESOURCE_IN_USE;
    }
    put(report.sVendor, known->second->Vendor());
    put(report.sTLType, known->second->TLType());
    return K_ST_SUCCESS;
}

std::vector<std::string> CFactory::Cameras() const {
    GEV::CAutoLock lock(section_);
    return cameras_;
}

std::vector<std::pair<std::string, CTLWrapper*>> CFactory::Producers() const {
    GEV::CAutoLock lock(section_);
    std::vector<std::pair<std::string, CTLWrapper*>> all;
    for (auto& [key, producer] : producers_) all.emplace_back(key, producer.get());
    return all;
}

CTLWrapper* CFactory::FindProducer(const std::string& key) const {
    GEV::CAutoLock lock(section_);
    auto found = producers_.find(key);
    return found == producers_.end() ? nullptr : found->second.get();
}

K_STATUS_CODES CFactory::Locate(const char* camera_id, Place& place) const {
    if (!camera_id) return K_ST_INVALID_ID;
    auto producer_key = kiv::producer_part(camera_id);
    auto device = kiv::device_part(camera_id);
    auto interface_id = kiv::interface_part(camera_id);
    if (!producer_key || !device || !interface_id) return K_ST_INVALID_ID;
    place.producer = FindProducer(*producer_key);
    place.opened = place.producer ? place.producer->FindInterface(*interface_id) : nullptr;
    place.device = std::move(*device);
    return place.opened ? K_ST_SUCCESS : K_ST_INVALID_HANDLE;
}

K_STATUS_CODES CFactory::CameraInfo(const char* camera_id, std::uint32_t command, char* buffer, std::uint32_t& size) const {
    Place place;
    if (auto status = Locate(camera_id, place); status != K_ST_SUCCESS) return status;
    if (command == device_part_command) {
        // No capacity check: the caller promises room for the identifier that it passed in itself.
        if (buffer) buffer[place.device.copy(buffer, place.device.size())] = '\0';
        size = static_cast<std::uint32_t>(place.device.size() + 1);
        return K_ST_SUCCESS;
    }
    if (!place.producer->IFGetDeviceInfo) return K_ST_NOT_IMPLEMENTED;
    try {
        GenTL::INFO_DATATYPE type = 0;
        std::size_t wide = size;
        auto status = place.producer->IFGetDeviceInfo(place.opened->Handle(), place.device.c_str(), producer_command(command),
                                                      &type, buffer, &wide);
        size = static_cast<std::uint32_t>(wide);
        return status;
    } catch (...) {
        return K_ST_NOT_IMPLEMENTED;
    }
}

K_STATUS_CODES CFactory::CameraAccess(const char* camera_id, std::int32_t& access) const {
    Place place;
    if (auto status = Locate(camera_id, place); status != K_ST_SUCCESS) return status;
    if (!place.producer->IFGetDeviceInfo) return K_ST_NOT_IMPLEMENTED;
    GenTL::INFO_DATATYPE type = 0;
    std::int32_t value = 0;
    std::size_t size = sizeof value;
    auto status = place.producer->IFGetDeviceInfo(place.opened->Handle(), place.device.c_str(), GenTL::DEVICE_INFO_ACCESS_STATUS,
                                                  &type, &value, &size);
    if (status == K_ST_SUCCESS) access = value;
    return status;
}

ForceIpSettings CFactory::ForceIp() const {
    GEV::CAutoLock lock(section_);
    return force_ip_;
}

void CFactory::EnableForceIp(std::uint32_t enable) {
    GEV::CAutoLock lock(section_);
    force_ip_.enable = enable;
}

void CFactory::SendActionCommand(std::uint32_t device_key, std::uint32_t group_key, std::uint32_t group_mask, void* first,
                                 void* second) const {
    for (const auto& entry : Producers()) {
        auto* producer = entry.second;
        if (producer->TLSendActionCommand)
            kiv::answer_of(
                [&] { return producer->TLSendActionCommand(producer->TL(), device_key, group_key, group_mask, first, second); });
    }
}

bool CFactory::Report(std::uint32_t index, K_PRODUCER_REPORT& report) const {
    GEV::CAutoLock lock(section_);
    if (index >= reports_.size()) return false;
    report = reports_[index];
    return true;
}

}  // namespace GenICam::Factory
