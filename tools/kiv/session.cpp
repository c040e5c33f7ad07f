#include "session.h"

#include <Kiv_Registry.h>

#include <array>

#include "node.h"
#include "text.h"

namespace {

constexpr uint32_t kFirstTextSize = 1024;

using RegistryFile = std::unique_ptr<K_REGISTRY, Closer<K_Registry_Close>>;

/// K_Factory_Open falls back to the installed registry when the given file does not open. Someone who names a file means that
/// file.
void require_registry(const std::string& path) {
    const bool needs_expansion = path.find("$(") != std::string::npos;
    if (path.empty() || needs_expansion) return;
    REGISTRY_HANDLE raw = nullptr;
    const K_STATUS_CODES status = K_Registry_Open(path.c_str(), &raw);
    const RegistryFile file(raw);
    if (status == K_ST_SUCCESS) return;
    const std::string reason =
        read_text([](char* buffer, uint32_t* size) { return K_Registry_GetLastError(buffer, size); }, "K_Registry_GetLastError");
    throw ApiError(ExitCode::kNothingFound,
                   failure_text(status, "K_Registry_Open", path) + (reason.empty() ? "" : "\n  " + printable(reason)), status);
}

/// What the library tells its debugger output while this object lives: it knows more than a status can say.
class DebugCapture {
public:
    DebugCapture() { K_SetDebugOutput(Add, this); }
    ~DebugCapture() { K_SetDebugOutput(nullptr, nullptr); }
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;

    /// Empty, or a line below a message.
    std::string Line() const { return text_.empty() ? "" : "\n  " + printable(text_.substr(0, text_.find('\n'))); }

private:
    static void K_CALL Add(void* context, const char* text) { static_cast<DebugCapture*>(context)->text_ += text; }

    std::string text_;
};

ExitCode exit_of_open(K_STATUS_CODES status) {
    switch (status) {
        case K_ST_ACCESS_DENIED:
        case K_ST_RESOURCE_IN_USE:
        case K_ST_NOT_AVAILABLE:
        case K_ST_INVALID_ID:
        case K_ST_INVALID_HANDLE:
            return ExitCode::kNoSuchCamera;
        default:
            return ExitCode::kFailed;
    }
}

/// What to do about it, where that can be known.
std::string advice_of_open(K_STATUS_CODES status) {
    const bool in_use = status == K_ST_ACCESS_DENIED || status == K_ST_RESOURCE_IN_USE;
    return in_use ? "\n  The camera is open in another program; it can be opened when that one closes it." : "";
}

std::vector<std::string> feature_names(CAM_HANDLE camera) {
    uint32_t count = 0;
    if (K_Camera_GetNumOfNodes(camera, &count) != K_ST_SUCCESS) return {};
    std::vector<std::string> names;
    for (uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE node = nullptr;
        if (K_Camera_GetNodeByIndex(camera, i, &node) == K_ST_SUCCESS) names.push_back(Node(node).Name());
    }
    return names;
}

}  // namespace

std::string read_text(const TextCall& read, std::string_view call, std::string_view argument) {
    std::string text(kFirstTextSize, '\0');
    auto size = kFirstTextSize;
    K_STATUS_CODES status = read(text.data(), &size);
    if (status != K_ST_SUCCESS && size > text.size()) {
        text.assign(size, '\0');
        status = read(text.data(), &size);
    }
    check(status, call, argument);
    text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
    return text;
}

Factory::Factory(const std::string& registry) {
    require_registry(registry);
    FACTORY_HANDLE raw = nullptr;
    const DebugCapture said;
    const K_STATUS_CODES status = K_Factory_Open(registry.c_str(), &raw);
    handle_.reset(raw);
    const std::string failed = failure_text(status, "K_Factory_Open", registry);
    if (status == K_ST_NO_DATA)
        throw ApiError(ExitCode::kNothingFound,
                       failed + "\n  The registry file lists no producer or cannot be read." + said.Line(), status);
    if (status == K_ST_INVALID_PARAMETER)
        throw ApiError(ExitCode::kNothingFound, failed + "\n  No registry file was found; name one with --registry.", status);
    check(status, "K_Factory_Open", registry);
}

std::vector<std::string> Factory::FindCameras() {
    bool8_kiv changed = false;
    check(K_Factory_UpdateCameraList(Get(), &changed), "K_Factory_UpdateCameraList");
    uint32_t count = 0;
    check(K_Factory_GetNumOfCameras(Get(), &count), "K_Factory_GetNumOfCameras");
    std::vector<std::string> ids;
    for (uint32_t i = 0; i < count; ++i) {
        const auto read = [&](char* buffer, uint32_t* size) { return K_Factory_GetCameraIDByIndex(Get(), i, buffer, size); };
        ids.push_back(read_text(read, "K_Factory_GetCameraIDByIndex", std::to_string(i)));
    }
    return ids;
}

std::string Factory::CameraInfo(const std::string& id, uint32_t command) const {
    const auto read = [&](char* buffer, uint32_t* size) {
        return K_Factory_GetCameraInfo(Get(), id.c_str(), command, buffer, size);
    };
    try {
        return read_text(read, "K_Factory_GetCameraInfo", id);
    } catch (const ApiError&) {
        return {};
    }
}

std::optional<int32_t> Factory::CameraAccess(const std::string& id) const {
    int32_t access = 0;
    if (K_Factory_GetCameraAccess(Get(), id.c_str(), &access) != K_ST_SUCCESS) return std::nullopt;
    return access;
}

std::vector<K_PRODUCER_REPORT> Factory::Producers() const {
    std::vector<K_PRODUCER_REPORT> reports;
    auto report = std::make_unique<K_PRODUCER_REPORT>();
    while (K_Factory_GetProducerReport(Get(), static_cast<uint32_t>(reports.size()), report.get()) == K_ST_SUCCESS)
        reports.push_back(*report);
    return reports;
}

Camera::Camera(const Factory& factory, const std::string& id) : id_(id) {
    CAM_HANDLE raw = nullptr;
    const K_STATUS_CODES status = K_Camera_Open_Proxy(factory.Get(), id.c_str(), &raw);
    if (status != K_ST_SUCCESS)
        throw ApiError(exit_of_open(status), failure_text(status, "K_Camera_Open_Proxy", id) + advice_of_open(status), status);
    handle_.reset(raw);
}

NODE_HANDLE Camera::FindNode(const std::string& name) const {
    NODE_HANDLE node = nullptr;
    return K_Camera_GetNodeByName(Get(), name.c_str(), &node) == K_ST_SUCCESS ? node : nullptr;
}

NODE_HANDLE Camera::NodeByName(const std::string& name) const {
    NODE_HANDLE node = nullptr;
    const K_STATUS_CODES status = K_Camera_GetNodeByName(Get(), name.c_str(), &node);
    if (status != K_ST_INVALID_PARAMETER) {
        check(status, "K_Camera_GetNodeByName", name);
        return node;
    }
    std::string message = failure_text(status, "K_Camera_GetNodeByName", name) + "\n  The camera has no feature of that name.";
    const std::vector<std::string> near = similar_names(name, feature_names(Get()));
    if (!near.empty()) message += " Did you mean " + printable(joined(near, " or ")) + "?";
    throw ApiError(ExitCode::kFailed, message, status);
}

std::optional<int64_t> Camera::Integer(const std::string& name) const {
    int64_t value = 0;
    if (K_Camera_GetValueInt64(Get(), name.c_str(), &value) != K_ST_SUCCESS) return std::nullopt;
    return value;
}

std::optional<std::string> Camera::Text(const std::string& name) const {
    try {
        return read_text([&](char* buffer, uint32_t* size) { return K_Camera_GetValueString(Get(), name.c_str(), buffer, size); },
                         "K_Camera_GetValueString", name);
    } catch (const ApiError&) {
        return std::nullopt;
    }
}

void Camera::Set(const std::string& name, const std::string& text) const {
    check(K_Camera_SetValueString(Get(), name.c_str(), text.c_str()), "K_Camera_SetValueString", name);
}

void Camera::Execute(const std::string& command) const {
    check(K_Camera_ExecuteCommand(Get(), command.c_str()), "K_Camera_ExecuteCommand", command);
}

Stream::Stream(const Camera& camera, uint32_t buffer_size, void* context, K_IMAGE_CONTEXT_CALLBACK callback) {
    THRD_HANDLE raw = nullptr;
    const K_STATUS_CODES status =
        K_Image_OpenStream(camera.Get(), 0, context, reinterpret_cast<void (*)(void)>(callback), &raw, buffer_size, 0);
    handle_.reset(raw);
    check(status, "K_Image_OpenStream", camera.Id());
    void* stream = nullptr;
    check(K_Image_GetStreamHandle(handle_.get(), &stream), "K_Image_GetStreamHandle");
    if (stream == nullptr)
        throw ToolError(ExitCode::kFailed, "K_Image_OpenStream(\"" + camera.Id() +
                                               "\") could not start the stream with buffers of " + std::to_string(buffer_size) +
                                               " bytes");
}

std::optional<K_STREAM_STATISTICS> Stream::Statistics() const {
    K_STREAM_STATISTICS statistics{};
    if (K_Image_GetStreamStatistics(handle_.get(), &statistics) != K_ST_SUCCESS) return std::nullopt;
    return statistics;
}

std::optional<uint64_t> Stream::Counter(int32_t command) const {
    uint64_t value = 0;
    uint32_t size = sizeof value;
    if (K_Image_GetStreamInfo(handle_.get(), command, &value, &size) != K_ST_SUCCESS) return std::nullopt;
    return value;
}

std::string library_info(uint32_t what) {
    uint32_t size = 0;
    check(K_Factory_GetInfo(what, nullptr, &size), "K_Factory_GetInfo");
    std::string text(size, '\0');
    check(K_Factory_GetInfo(what, text.data(), &size), "K_Factory_GetInfo");
    return text.c_str();
}
