#include "GenApi/node_map_ref.h"

#include <fstream>
#include <iterator>
#include <span>

#include "GenICam/exceptions.h"
#include "kiv/archive/first_xml.h"
#include "kiv/genapi/load_node_map.h"

namespace GenApi {

CNodeMapRef::CNodeMapRef(const gcstring& deviceName) : deviceName_(deviceName) {}
CNodeMapRef::CNodeMapRef(std::shared_ptr<INodeMap> map, const gcstring& deviceName)
    : map_(std::move(map)), deviceName_(deviceName) {}
CNodeMapRef::CNodeMapRef(INodeMap* borrowed, const gcstring& deviceName)
    : map_(std::shared_ptr<INodeMap>(), borrowed), deviceName_(deviceName) {}
CNodeMapRef::~CNodeMapRef() = default;
CNodeMapRef::CNodeMapRef(const CNodeMapRef&) = default;
CNodeMapRef& CNodeMapRef::operator=(const CNodeMapRef&) = default;

INodeMap& CNodeMapRef::Map() const {
    if (!map_) throw GenICam::LogicalErrorException("No description has been loaded.");
    return *map_;
}

IDeviceInfo& CNodeMapRef::Info() const { return *Map().GetDeviceInfo(); }

namespace {

std::string bytes_of_file(const gcstring& name) {
    std::ifstream file(name.c_str(), std::ios::binary);
    if (!file) throw GenICam::RuntimeException("The description file '" + name.str() + "' cannot be opened.");
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) throw GenICam::RuntimeException("The description file '" + name.str() + "' cannot be read.");
    return bytes;
}

std::string unpacked(std::string_view archive, std::string_view name) {
    try {
        return kiv::archive::first_xml_of_zip(std::as_bytes(std::span(archive)), name).content;
    } catch (const kiv::archive::ArchiveError& error) {
        throw GenICam::RuntimeException(error.what());
    }
}

std::string description_in(const gcstring& fileName) {
    auto bytes = bytes_of_file(fileName);
    return kiv::archive::is_zip(std::as_bytes(std::span(bytes))) ? unpacked(bytes, fileName) : bytes;
}

}  // namespace

void CNodeMapRef::_LoadXMLFromFile(const gcstring& fileName) {
    map_ = kiv::genapi::load_node_map(description_in(fileName), deviceName_.str());
}

void CNodeMapRef::_LoadXMLFromString(const gcstring& xml) { map_ = kiv::genapi::load_node_map(xml.str(), deviceName_.str()); }

void CNodeMapRef::_LoadXMLFromZIPFile(const gcstring& fileName) {
    map_ = kiv::genapi::load_node_map(unpacked(bytes_of_file(fileName), fileName), deviceName_.str());
}

void CNodeMapRef::_LoadXMLFromZIPData(const void* data, size_t size) {
    if (!data) throw GenICam::InvalidArgumentException("There are no archive data.");
    map_ = kiv::genapi::load_node_map(unpacked({static_cast<const char*>(data), size}, "archive in memory"), deviceName_.str());
}

void CNodeMapRef::_LoadXMLFromFileInject(const gcstring& targetFileName, const gcstring& injectedFileName) {
    map_ = kiv::genapi::load_merged_node_map(description_in(targetFileName), description_in(injectedFileName), deviceName_.str());
}

void CNodeMapRef::_LoadXMLFromStringInject(const gcstring& targetXml, const gcstring& injectedXml) {
    map_ = kiv::genapi::load_merged_node_map(targetXml.str(), injectedXml.str(), deviceName_.str());
}

bool CNodeMapRef::_ClearXMLCache() { return true; }
bool CNodeMapRef::_Connect(IPort* port) const { return Map().Connect(port); }
bool CNodeMapRef::_Connect(IPort* port, const gcstring& portName) const { return Map().Connect(port, portName); }
void CNodeMapRef::_Destroy() { map_.reset(); }

INode* CNodeMapRef::_GetNode(const gcstring& name) const { return Map().GetNode(name); }
void CNodeMapRef::_GetNodes(NodeList_t& nodes) const { Map().GetNodes(nodes); }
uint64_t CNodeMapRef::_GetNumNodes() const { return Map().GetNumNodes(); }
void CNodeMapRef::_InvalidateNodes() const { Map().InvalidateNodes(); }
void CNodeMapRef::_Poll(int64_t elapsedMilliseconds) const { Map().Poll(elapsedMilliseconds); }
CLock& CNodeMapRef::_GetLock() const { return Map().GetLock(); }
gcstring CNodeMapRef::_GetDeviceName() const { return map_ ? map_->GetDeviceName() : deviceName_; }

void CNodeMapRef::_GetSupportedSchemaVersions(gcstring_vector& versions) const {
    versions.clear();
    for (const auto* version : {"1.0", "1.1"}) versions.push_back(version);
}

gcstring CNodeMapRef::_GetModelName() const { return Info().GetModelName(); }
gcstring CNodeMapRef::_GetVendorName() const { return Info().GetVendorName(); }
gcstring CNodeMapRef::_GetToolTip() const { return Info().GetToolTip(); }
gcstring CNodeMapRef::_GetStandardNameSpace() const { return Info().GetStandardNameSpace(); }
void CNodeMapRef::_GetGenApiVersion(Version_t& version, uint16_t& build) const { Info().GetGenApiVersion(version, build); }
void CNodeMapRef::_GetSchemaVersion(Version_t& version) const { Info().GetSchemaVersion(version); }
void CNodeMapRef::_GetDeviceVersion(Version_t& version) const { Info().GetDeviceVersion(version); }
gcstring CNodeMapRef::_GetProductGuid() const { return Info().GetProductGuid(); }
gcstring CNodeMapRef::_GetVersionGuid() const { return Info().GetVersionGuid(); }

}  // namespace GenApi
