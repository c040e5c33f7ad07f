#include "transport/producer_search.h"

#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>

namespace kiv {

namespace {

std::string last_registry_error() {
    char text[1024] = {};
    std::uint32_t size = sizeof text;
    K_Registry_GetLastError(text, &size);
    return text;
}

std::string without_trailing_separator(std::string folder) {
    if (!folder.empty() && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
    return folder;
}

// Paths that were put together from a folder with and a name without care hold one separator too many.
void replace_first(std::string& path, std::string_view doubled, std::string_view single) {
    auto at = path.find(doubled);
    if (at != path.npos) path.replace(at, doubled.size(), single);
}

}  // namespace

ProducerRegistry::ProducerRegistry(const std::string& path) {
    status_ = K_Registry_Open(path.c_str(), &registry_);
    if (status_ == K_ST_SUCCESS) status_ = K_Registry_OpenElementList(registry_, K_REGISTRY_LIST_PRODUCERS, &list_);
    if (status_ == K_ST_SUCCESS) status_ = K_ElementList_GetNumOfElements(list_, &count_);
    if (status_ != K_ST_SUCCESS) problem_ = last_registry_error();
}

ProducerRegistry::~ProducerRegistry() {
    if (list_) K_ElementList_Close(list_);
    if (registry_) K_Registry_Close(registry_);
}

K_STATUS_CODES ProducerRegistry::Datum(const std::string& name, std::int32_t key, std::string& text) const {
    char buffer[4096] = {};
    std::uint32_t size = sizeof buffer;
    auto status = K_Registry_GetData(registry_, name.c_str(), key, buffer, &size);
    if (status == K_ST_SUCCESS) text = buffer;
    return status;
}

K_STATUS_CODES ProducerRegistry::Read(std::uint32_t index, Element& element) const {
    std::uint32_t size = 0;
    K_ElementList_GetElementNameByIndex(list_, index, nullptr, &size);
    std::string name(size + 10, '\0');
    size = static_cast<std::uint32_t>(name.size());
    if (auto status = K_ElementList_GetElementNameByIndex(list_, index, name.data(), &size); status != K_ST_SUCCESS)
        return status;
    name.resize(name.find('\0'));

    if (auto status = Datum(name, K_REGISTRY_DATA_KEY, element.key); status != K_ST_SUCCESS) return status;
    std::string text;
    element.enabled = Datum(name, K_REGISTRY_DATA_ENABLED, text) != K_ST_SUCCESS || text != "false";
    if (!element.enabled) {
        Datum(name, K_REGISTRY_DATA_PATH, element.path);
        return K_ST_SUCCESS;
    }
    if (auto status = Datum(name, K_REGISTRY_DATA_PATH, element.path); status != K_ST_SUCCESS) return status;
    text.clear();
    element.flag = Datum(name, K_REGISTRY_DATA_FLAG, text) == K_ST_SUCCESS && text == "true";
    return K_ST_SUCCESS;
}

std::string find_producer_file(const std::string& configured) {
    std::string path = platform::normalise_path(configured);
    if (!platform::path_exists(path)) {
        for (auto& piece : platform::split_search_path(platform::get_environment("GENICAM_GENTL64_PATH").value_or(""))) {
            auto candidate = platform::join_path(without_trailing_separator(piece), path);
            if (!platform::path_exists(candidate)) continue;
            path = candidate;
            break;
        }
    }
    replace_first(path, "\\\\", "\\");
    replace_first(path, "//", "/");
    return path;
}

}  // namespace kiv
