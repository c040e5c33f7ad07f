#include "events_feed.h"

#include <GenApi/i_node.h>
#include <GenApi/i_node_map.h>
#include <GenICam/exceptions.h>

#include <array>
#include <cstdio>

#include "events_listener.h"

namespace {

// EVENT_TYPE of GenTL, and the kind by which GigE Vision producers offer messages.
constexpr uint32_t kError = 0, kRemoteDevice = 4, kMessages = 1000;
constexpr std::size_t kLongestMessage = 64 * 1024;

bool is_gige(const Camera& camera) {
    TRANSPORT_LAYER_HANDLE producer = nullptr;
    bool8_kiv gige = 0;
    return K_Camera_GetTLHandle(camera.Get(), &producer) == K_ST_SUCCESS &&
           K_Is_GigE_Transport_Layer(producer, &gige) == K_ST_SUCCESS && gige != 0;
}

/// The node map behind a camera: every node handle is the address of one of the node's interfaces.
GenApi::INodeMap* node_map_of(const Camera& camera) {
    auto* root = reinterpret_cast<GenApi::IBase*>(camera.NodeByName("Root"));
    const auto* node = dynamic_cast<GenApi::INode*>(root);
    return node != nullptr ? node->GetNodeMap() : nullptr;
}

std::string hexadecimal(const std::vector<uint8_t>& bytes, std::size_t count) {
    constexpr std::array kDigits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    std::string text = "0x";
    for (std::size_t i = 0; i < count; ++i) (text += kDigits[bytes[i] >> 4]) += kDigits[bytes[i] & 15];
    return text;
}

}  // namespace

EventFeed::EventFeed(const Camera& camera) : camera_(camera), message_(kLongestMessage) {
    EVT_CONDITION_HANDLE condition = nullptr;
    check(K_Event_CreateCondition(&condition), "K_Event_CreateCondition");
    target_.reset(condition);
    const bool gige = is_gige(camera);
    K_STATUS_CODES status = gige ? Register(kMessages) : K_ST_NOT_IMPLEMENTED;
    // The library's own thread has it: what is left to be known is when the camera is gone.
    if (status == K_ST_RESOURCE_IN_USE) {
        Register(kError);
        return;
    }
    if (status != K_ST_SUCCESS) status = Register(kRemoteDevice);
    if (status != K_ST_SUCCESS)
        throw ApiError(ExitCode::kFailed,
                       failure_text(status, "K_Camera_RegisterEvent", camera.Id()) +
                           "\n  The producer hands on no events of its cameras (EVENT_REMOTE_DEVICE).",
                       status);
    adapter_.emplace(node_map_of(camera));
}

EventFeed::~EventFeed() {
    if (event_) K_Camera_UnRegisterEvent(camera_.Get(), kind_);
}

K_STATUS_CODES EventFeed::Register(uint32_t kind) {
    EVT_HANDLE event = nullptr;
    const K_STATUS_CODES status = K_Camera_RegisterEvent(camera_.Get(), kind, target_.get(), &event);
    if (status != K_ST_SUCCESS) return status;
    event_.reset(event);
    kind_ = kind;
    return status;
}

void EventFeed::Poll() {
    if (!event_) return;
    auto size = static_cast<uint32_t>(message_.size());
    const K_STATUS_CODES status = K_Event_GetData(event_.get(), message_.data(), &size);
    if (status == K_ST_TIMEOUT) return;
    check(status, "K_Event_GetData", camera_.Id());
    if (adapter_) Deliver(std::min<uint32_t>(size, static_cast<uint32_t>(message_.size())));
}

void EventFeed::Deliver(uint32_t size) {
    try {
        adapter_->DeliverMessage(message_.data(), size);
    } catch (const GenICam::GenericException&) {
        // Of another transport: what it says is not known, that it came is.
        DeviceEvent raw{std::chrono::system_clock::now(), "", std::nullopt};
        raw.values["data"] = hexadecimal(message_, size);
        add_event(std::move(raw));
    }
}
