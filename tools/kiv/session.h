/// The C interface with owners: a factory, a camera and a stream that close themselves, in the right order when they are locals
/// one below the other, and that throw where the C call returns a status. A pattern for any C++ client of the library.
#pragma once

#include <Kiv_Factory.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "error.h"

/// Makes a close function of the library the deleter of a unique_ptr.
template <auto Close>
struct Closer {
    template <class Object>
    void operator()(Object* handle) const noexcept {
        Close(handle);
    }
};

/// Reads a text of unknown length from any function that takes a buffer and its size. Throws what `check` throws.
using TextCall = std::function<K_STATUS_CODES(char* buffer, uint32_t* size)>;
std::string read_text(const TextCall& read, std::string_view call, std::string_view argument = {});

class Factory {
public:
    /// An empty path means the registry file of the installation. No usable registry: ExitCode::kNothingFound.
    explicit Factory(const std::string& registry);

    FACTORY_HANDLE Get() const { return handle_.get(); }
    /// Looks for producers and cameras anew and returns the identifiers.
    std::vector<std::string> FindCameras();
    /// A fact about a camera that need not be open; empty when its producer does not tell. `command` as in
    /// K_Factory_GetCameraInfo.
    std::string CameraInfo(const std::string& id, uint32_t command) const;
    /// GenTL's DEVICE_ACCESS_STATUS; nothing when the producer does not tell.
    std::optional<int32_t> CameraAccess(const std::string& id) const;
    /// What became of each producer of the registry; call FindCameras before.
    std::vector<K_PRODUCER_REPORT> Producers() const;

private:
    std::unique_ptr<K_FACTORY, Closer<K_Factory_Close>> handle_;
};

class Camera {
public:
    Camera(const Factory& factory, const std::string& id);

    CAM_HANDLE Get() const { return handle_.get(); }
    const std::string& Id() const { return id_; }
    /// Null when the camera has no node of that name.
    NODE_HANDLE FindNode(const std::string& name) const;
    /// Throws for an unknown name, with the names that are similar.
    NODE_HANDLE NodeByName(const std::string& name) const;
    /// Nothing when the feature does not exist or cannot be read.
    std::optional<int64_t> Integer(const std::string& name) const;
    std::optional<std::string> Text(const std::string& name) const;
    void Set(const std::string& name, const std::string& text) const;
    void Execute(const std::string& command) const;

private:
    std::string id_;
    std::unique_ptr<K_CAMERA, Closer<K_Camera_Close>> handle_;
};

/// A running image stream. The callback comes on the stream's thread; the destructor waits for it to return.
class Stream {
public:
    /// `context` must not be null: it is what makes the library call a K_IMAGE_CONTEXT_CALLBACK.
    Stream(const Camera& camera, uint32_t buffer_size, void* context, K_IMAGE_CONTEXT_CALLBACK callback);

    THRD_HANDLE Handle() const { return handle_.get(); }
    /// Nothing when the library does not tell.
    std::optional<K_STREAM_STATISTICS> Statistics() const;
    /// A 64-bit counter of GenTL's STREAM_INFO_CMD; nothing when the producer does not keep it.
    std::optional<uint64_t> Counter(int32_t command) const;
    void Close() { handle_.reset(); }

private:
    std::unique_ptr<K_THREAD, Closer<K_Image_CloseStream>> handle_;
};

/// A fact about the library by its number in K_Factory_GetInfo; 0 is the version.
std::string library_info(uint32_t what);
