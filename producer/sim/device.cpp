#include "device.h"

#include <cstring>
#include <utility>

#include "camera/register_file.h"
#include "device_events.h"
#include "flavour.h"
#include "interface.h"
#include "kiv/platform/thread.h"
#include "session.h"
#include "stream.h"

namespace kivsim {
namespace {

/// The camera's identification registers stand where a GenCP device has them.
constexpr uint64_t vendor_address = 0x4, version_address = 0xC4, user_name_address = 0x184;
constexpr size_t name_length = 64;

std::string read_name(Camera& camera, uint64_t address) {
    char text[name_length] = {};
    if (camera.Read(address, text, sizeof text) != GenTL::GC_ERR_SUCCESS) return {};
    return {text, strnlen(text, sizeof text)};
}

}  // namespace

const std::vector<std::string>& access_words() {
    static const std::vector<std::string> words = {"Unknown", "ReadWrite",     "ReadOnly",    "NoAccess",
                                                   "Busy",    "OpenReadWrite", "OpenReadOnly"};
    return words;
}

CameraIdentity camera_identity(Camera& camera) {
    return {read_name(camera, vendor_address), read_name(camera, version_address), read_name(camera, user_name_address)};
}

CameraIdentity camera_identity(const CameraEntry& entry) {
    // A whole camera would prepare its description and its sensor, too, only to be asked for its name.
    const RegisterFile registers(entry.camera);
    return {registers.Text(Reg::ManufacturerName), registers.Text(Reg::DeviceVersion), registers.Text(Reg::UserDefinedName)};
}

bool is_unplugged(const CameraEntry& entry) { return entry.state->Unplugged(); }

Info device_info(const Session& session, const CameraEntry& entry, const CameraIdentity& identity,
                 GenTL::DEVICE_ACCESS_STATUS status, GenTL::DEVICE_INFO_CMD command) {
    switch (command) {
        case GenTL::DEVICE_INFO_ID:
            return Info::Text(entry.id);
        case GenTL::DEVICE_INFO_VENDOR:
            return Info::Text(identity.vendor);
        case GenTL::DEVICE_INFO_MODEL:
            return Info::Text(entry.camera.model);
        case GenTL::DEVICE_INFO_TLTYPE:
            return Info::Text(session.configuration.tl_type);
        case GenTL::DEVICE_INFO_DISPLAYNAME:
            return Info::Text(identity.vendor + " " + entry.camera.model + " (" + entry.id + ")");
        case GenTL::DEVICE_INFO_ACCESS_STATUS:
            return Info::Int32(status);
        case GenTL::DEVICE_INFO_USER_DEFINED_NAME:
            return Info::Text(identity.user_defined_name);
        case GenTL::DEVICE_INFO_SERIAL_NUMBER:
            return Info::Text(entry.camera.serial);
        case GenTL::DEVICE_INFO_VERSION:
            return Info::Text(identity.version);
        case GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY:
            return Info::Uint64(1'000'000'000);
        default:
            fail_unknown_command("DevGetInfo", command);
    }
}

Device::Device(Session& session, Interface& parent, const CameraEntry& entry, GenTL::DEVICE_ACCESS_FLAGS access,
               uint32_t multicast)
    : Module(session, "DevicePort", "Device", device_event_kinds()),
      parent_(parent),
      entry_(entry),
      access_(access),
      multicast_(multicast),
      locks_(DeviceAccess::Acquire(session.configuration.state_folder, entry.camera.serial, access)),
      camera_(entry.camera) {
    ListFeatures();
    if (flavour.gige) ListNetworkFeatures();
    ListStreamFeatures();
    FinishFeatures();
    if (!ReadOnly()) reset_simulation(camera_, entry_.simulation);
    ReadEventSettings();
    camera_.SetEventSink([this](const CameraEvent& event) { Tell(event); });
    Events().BelongTo(Faults());
    Events().OnRegister([this](EventQueue& registered) { StartEvents(registered); });
}

Device::~Device() { StopEvents(); }

std::shared_ptr<RemotePort> Device::Remote() {
    if (!remote_) {
        remote_ = std::make_shared<RemotePort>(shared_from_this());
        session_.handles.Add(remote_);
    }
    return remote_;
}

void Device::ListFeatures() {
    const auto text = [this](GenTL::DEVICE_INFO_CMD command) {
        return [this, command] { return std::string(GetInfo(command).Content().c_str()); };
    };
    features_.Category("DeviceInformation");
    features_.Text("DeviceID", "Identifier of the device", 256, text(GenTL::DEVICE_INFO_ID));
    features_.Text("DeviceVendorName", "Maker of the device", 64, text(GenTL::DEVICE_INFO_VENDOR));
    features_.Text("DeviceModelName", "Model of the device", 64, text(GenTL::DEVICE_INFO_MODEL));
    features_.Text("DeviceFamilyName", "Family of the device", 64, [] { return "KivSim"; });
    features_.Text("DeviceVersion", "Version of the device", 64, text(GenTL::DEVICE_INFO_VERSION));
    features_.Text("DeviceManufacturerInfo", "What the maker says about the device", 64, [] { return "simulated camera"; });
    features_.Text("DeviceSerialNumber", "Serial number of the device", 64, text(GenTL::DEVICE_INFO_SERIAL_NUMBER));
    features_.Text("DeviceDisplayName", "Name of the device to show to people", 512, text(GenTL::DEVICE_INFO_DISPLAYNAME));
    features_.Text("DeviceUserID", "Name that the user gave the device", name_length, text(GenTL::DEVICE_INFO_USER_DEFINED_NAME),
                   [this](std::string_view name) {
                       char bytes[name_length] = {};
                       name.copy(bytes, sizeof bytes - 1);
                       Remote()->Write(user_name_address, std::as_bytes(std::span(bytes)));
                   });
    features_.Enumeration("DeviceType", "Transport technology", transport_words(),
                          [this] { return transport_word_index(session_.configuration.tl_type); });
    features_.Enumeration("DeviceAccessStatus", "Who has the device", access_words(), [this] {
        return ReadOnly() ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY : GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE;
    });
    features_.Integer("DeviceTimestampFrequency", "Ticks per second of the device's clock", [] { return 1'000'000'000; });
    features_.Enumeration("DeviceChunkDataFormat", "Layout of chunk data", {"GigEVision"}, [] { return 0; });
    features_.Enumeration("DeviceEventDataFormat", "Layout of the device's events", {"GigEVision", "GigEVisionExtendedId"},
                          [this] { return ExtendedIds() ? 1 : 0; });
}

void Device::ListNetworkFeatures() {
    const NetworkPort& network = entry_.network;
    features_.Integer("GevDeviceMACAddress", "MAC address of the device", [&] { return static_cast<int64_t>(network.mac); });
    features_.Integer("GevDeviceIPAddress", "Present IP address of the device", [this] { return entry_.state->Ip(); });
    features_.Integer("GevDeviceSubnetMask", "Present subnet mask of the device", [&] { return network.subnet_mask; });
    features_.Integer("GevDeviceGateway", "Present gateway of the device", [&] { return network.gateway; });
    features_.Integer("GevDeviceMulticast", "Multicast setting that the device was opened with; 0: unicast",
                      [this] { return multicast_; });
}

Info Device::CustomFeature(int32_t feature) const {
    enum Feature { IpAddress = 1, SubnetMask, Gateway, MacAddress, Multicast };
    switch (feature) {
        case IpAddress:
            return Info::Uint32(entry_.state->Ip());
        case SubnetMask:
            return Info::Uint32(entry_.network.subnet_mask);
        case Gateway:
            return Info::Uint32(entry_.network.gateway);
        case MacAddress:
            return Info::Uint64(entry_.network.mac);
        case Multicast:
            return Info::Uint32(multicast_);
        default:
            fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "A device has no custom feature " + std::to_string(feature));
    }
}

void Device::ListStreamFeatures() {
    features_.Category("StreamEnumeration");
    features_.Index(
        "StreamSelector", "Index in the list of streams", [this] { return selected_; },
        [this](int64_t value) { selected_ = value; }, [] { return 1; });
    features_.SelectedBy("StreamSelector");
    features_.Text("StreamID", "Identifier of the stream", 256, [this] { return StreamId(); });
    features_.SelectedBy({});
}

Info Device::GetInfo(GenTL::DEVICE_INFO_CMD command) {
    const auto status = ReadOnly() ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY : GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE;
    return device_info(session_, entry_, camera_identity(camera_), status, command);
}

std::shared_ptr<Stream> Device::OpenStream(std::string_view id, uint32_t multicast) {
    if (id != StreamId()) fail(GenTL::GC_ERR_INVALID_ID, "Device " + entry_.id + " has no stream \"" + std::string(id) + "\"");
    if (stream_) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "Stream " + StreamId() + " is open already");
    if (ReadOnly()) fail(GenTL::GC_ERR_ACCESS_DENIED, "Device " + entry_.id + " is opened for reading only");
    Present();
    stream_ = std::make_shared<Stream>(session_, shared_from_this(), multicast);
    session_.handles.Add(stream_);
    return stream_;
}

void Device::Close() {
    if (const auto stream = stream_) stream->Close();
    if (remote_) session_.handles.Remove(*remote_);
    remote_.reset();
    Retire();
    StopEvents();
    locks_.reset();
    parent_.DeviceClosed(entry_.id);
}

bool Device::ExtendedIds() {
    uint32_t extended = 0;
    camera_.Read(row_of(Reg::ExtendedIds).address, &extended, sizeof extended);
    return extended != 0;
}

void Device::ReadEventSettings() {
    const auto value = [this](Reg reg) {
        uint32_t number = 0;
        camera_.Read(row_of(reg).address, &number, sizeof number);
        return number;
    };
    event_copies_ = value(Reg::FaultEventCopies);
    record_size_ = value(Reg::EventRecordSize);
    event_form_ = value(Reg::EventForm);
    events_per_message_ = value(Reg::EventsPerMessage);
}

void Device::RegistersWritten(uint64_t address, size_t size) {
    simulation_written(camera_, *entry_.state, address, size);
    const auto touches = [&](Reg reg) { return address < row_of(reg).End() && row_of(reg).address < address + size; };
    if (touches(Reg::ChangedFeature)) TellOfFeature();
    // A reset and a user set change them as well.
    for (auto reg :
         {Reg::FaultEventCopies, Reg::EventRecordSize, Reg::EventForm, Reg::EventsPerMessage, Reg::UserSetLoad, Reg::DeviceReset})
        if (touches(reg)) return ReadEventSettings();
}

void Device::StartEvents(EventQueue& registered) {
    if (registered.Type() == event_kind::record) registered.SetLargest(record_size_);
    // With the lock of the tree, as Close: never two at once.
    if (!events_.joinable() && !closing_) events_ = std::thread([this] { RunEvents(); });
}

void Device::RunEvents() {
    kiv::platform::set_thread_name("KivSim events");
    // The limit is how long it may take until an unplugged camera is noticed.
    while (!closing_ && !Vanished()) camera_.RunEvents(std::chrono::milliseconds(100));
}

void Device::StopEvents() {
    closing_ = true;
    camera_.Wake();
    if (events_.joinable()) events_.join();
}

void Device::Tell(const CameraEvent& event) {
    if (!untold_.empty() && untold_.front().extended_ids != event.extended_ids) SendUntold();
    untold_.push_back(event);
    // Data of unknown length leave no room for a second event.
    const bool is_alone = event_form_ == static_cast<uint32_t>(EventForm::EventData) && !event.extended_ids;
    if (is_alone || untold_.size() >= events_per_message_) SendUntold();
}

void Device::SendUntold() {
    const std::vector<CameraEvent> events = std::exchange(untold_, {});
    events_told_ += static_cast<uint32_t>(events.size());
    const auto request_id = static_cast<uint16_t>(messages_sent_++ % 0xFFFF + 1);  // never 0
    const std::string message = event_message(events, static_cast<EventForm>(event_form_.load()), request_id);
    for (uint32_t copy = 0; copy <= event_copies_; ++copy) {
        Events().Fire(GenTL::EVENT_REMOTE_DEVICE, message);
        if (!flavour.gige) continue;
        Events().Fire(event_kind::message, message);
        Events().Fire(event_kind::record, event_record(events.front(), message, events_told_, record_size_));
        for (const CameraEvent& event : events) {
            const uint32_t number = event.id;
            Events().Fire(event_kind::number, {reinterpret_cast<const char*>(&number), sizeof number});
        }
    }
}

void Device::TellOfFeature() {
    char text[longest_change] = {};
    camera_.Read(row_of(Reg::ChangedFeature).address, text, sizeof text);
    FeatureEvent event = feature_event({text, strnlen(text, sizeof text)});
    Events().Fire(event.kind, std::move(event.data));
}

bool Device::Vanished() {
    if (vanished_) return true;
    if (!is_unplugged(entry_)) return false;
    if (vanished_.exchange(true)) return true;
    Events().FireError(GenTL::GC_ERR_IO, "Camera " + entry_.id + " is no longer there");
    Events().Disconnect();
    camera_.Wake();
    return true;
}

Camera& Device::Present() {
    if (Vanished()) fail(GenTL::GC_ERR_IO, "Camera " + entry_.id + " is no longer there");
    return camera_;
}

PortIdentity Device::Identity() {
    const CameraIdentity camera = camera_identity(camera_);
    PortIdentity identity;
    identity.id = entry_.id;
    identity.vendor = camera.vendor;
    identity.model = entry_.camera.model;
    identity.tl_type = session_.configuration.tl_type;
    identity.module = "TLDevice";
    identity.version = producer_version;
    identity.name = "DevicePort";
    return identity;
}

}  // namespace kivsim
