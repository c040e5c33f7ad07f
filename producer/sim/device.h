/// The device module: the producer's side of an opened camera. The camera itself is behind its remote port.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "configuration.h"
#include "device_access.h"
#include "module.h"

namespace kivsim {

class Interface;
class RemotePort;
class Stream;

class Device : public Module, public std::enable_shared_from_this<Device> {
public:
    /// Throws ACCESS_DENIED when another process has the camera, ERROR when its registers cannot be mapped.
    Device(Session& session, Interface& parent, const CameraEntry& entry, GenTL::DEVICE_ACCESS_FLAGS access, uint32_t multicast);
    ~Device() override;

    Interface& Parent() const { return parent_; }
    /// One for the life of the device; made when it is first asked for.
    std::shared_ptr<RemotePort> Remote();
    const CameraEntry& Entry() const { return entry_; }
    bool ReadOnly() const { return access_ == GenTL::DEVICE_ACCESS_READONLY; }

    Info GetInfo(GenTL::DEVICE_INFO_CMD command);
    std::string StreamId() const { return entry_.id + "_Stream0"; }
    /// Properties of a GigE Vision device that DevQueryCustomFeature tells by number.
    Info CustomFeature(int32_t feature) const;
    std::shared_ptr<Stream> OpenStream(std::string_view id, uint32_t multicast = 0);
    void StreamClosed() { stream_.reset(); }

    void Close();

    /// To be called after a write to the camera's registers: some mean something to the producer.
    void RegistersWritten(uint64_t address, size_t size);

    /// The camera; throws IO once it has vanished, for good: a camera that comes back must be opened anew. Needs no lock.
    Camera& Present();
    /// The same without asking whether it is there.
    Camera& Hardware() { return camera_; }
    /// Whether it vanished; looks. The first one to see it fires the error event. Needs no lock.
    bool Vanished();

    PortIdentity Identity() override;
    EntryFaults* Faults() override { return &entry_.state->Faults(); }

private:
    void ListFeatures();
    void ListNetworkFeatures();
    /// A thread that lets the camera's events happen and looks whether the camera is there, as soon as somebody waits for either.
    void StartEvents(EventQueue& registered);
    void RunEvents();
    void StopEvents();
    void ReadEventSettings();
    void Tell(const CameraEvent& event);
    void SendUntold();
    void TellOfFeature();
    bool ExtendedIds();
    void ListStreamFeatures();

    Interface& parent_;  // closes its children before it goes
    const CameraEntry& entry_;
    const GenTL::DEVICE_ACCESS_FLAGS access_;
    const uint32_t multicast_;
    std::optional<DeviceAccess> locks_;
    Camera camera_;
    std::atomic<bool> vanished_{false};
    std::shared_ptr<RemotePort> remote_;
    std::shared_ptr<Stream> stream_;
    int64_t selected_ = 0;
    std::atomic<bool> closing_{false};
    uint32_t events_told_ = 0, messages_sent_ = 0;  ///< under the lock of the camera
    std::vector<CameraEvent> untold_;               ///< the same: events that wait for others to share a message with
    std::atomic<uint32_t> event_copies_{0}, record_size_{0}, event_form_{0}, events_per_message_{1};  ///< Tell must not read them
    std::thread events_;
};

/// The registers of the camera. Its calls need no lock: the camera has its own, and a slow one delays nobody else.
class RemotePort : public Object, public Port {
public:
    explicit RemotePort(const std::shared_ptr<Device>& device) : device_(device), faults_(device->Faults()) {}

    void Read(uint64_t address, std::span<std::byte> out) override;
    void Write(uint64_t address, std::span<const std::byte> in) override;
    PortIdentity Identity() override;
    DescriptionInfo Description() override;
    EntryFaults* Faults() override { return faults_; }
    RemotePort* AsRemotePort() noexcept override { return this; }

private:
    std::shared_ptr<Device> Owner() const;

    std::weak_ptr<Device> device_;  // a call may be under way while another thread closes the device
    EntryFaults* const faults_;     // the configuration's, which outlives every call
};

/// What the camera's own registers say, read without opening it.
struct CameraIdentity {
    std::string vendor, version, user_defined_name;
};
CameraIdentity camera_identity(Camera& camera);
CameraIdentity camera_identity(const CameraEntry& entry);

/// What is known of a camera without opening it, and of an open one.
Info device_info(const Session& session, const CameraEntry& entry, const CameraIdentity& identity,
                 GenTL::DEVICE_ACCESS_STATUS status, GenTL::DEVICE_INFO_CMD command);
/// The words of DEVICE_ACCESS_STATUS in node maps; the index is the value.
const std::vector<std::string>& access_words();
bool is_unplugged(const CameraEntry& entry);

}  // namespace kivsim
