#include "module.h"

#include <algorithm>

#include "device_events.h"
#include "session.h"

namespace kivsim {

const char* const producer_vendor = "Kivotek";
const char* const producer_version = KIVSIM_VERSION;

namespace {

struct TransportWord {
    const char* tl_type;
    const char* word;
};
constexpr TransportWord transports[] = {{"GEV", "GigEVision"}, {"CL", "CameraLink"},  {"CLHS", "CameraLinkHS"},
                                        {"CXP", "CoaXPress"},  {"U3V", "USB3Vision"}, {"Mixed", "Mixed"},
                                        {"Custom", "Custom"}};

}  // namespace

const std::vector<std::string>& transport_words() {
    static const std::vector<std::string> words = [] {
        std::vector<std::string> all;
        for (const TransportWord& row : transports) all.emplace_back(row.word);
        return all;
    }();
    return words;
}

int64_t transport_word_index(const std::string& tl_type) {
    const auto is_meant = [&](const TransportWord& row) { return tl_type == row.tl_type || tl_type == row.word; };
    const auto* row = std::find_if(std::begin(transports), std::end(transports), is_meant);
    return row - std::begin(transports);
}

void EventSource::CheckOffered(GenTL::EVENT_TYPE type) const {
    if (std::find(offered_.begin(), offered_.end(), type) != offered_.end()) return;
    fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "This module has no events of type " + std::to_string(type));
}

std::shared_ptr<EventQueue> EventSource::Register(GenTL::EVENT_TYPE type) {
    CheckOffered(type);
    std::shared_ptr<EventQueue> queue;
    {
        const std::scoped_lock guard(lock_);
        auto& slot = registered_[type];
        if (slot) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "Event type " + std::to_string(type) + " is registered already");
        queue = slot = std::make_shared<EventQueue>(type, faults_);
        if (disconnected_) slot->Disconnect();
        session_.handles.Add(slot);
    }
    if (on_register_) on_register_(*queue);
    return queue;
}

void EventSource::Unregister(GenTL::EVENT_TYPE type) {
    CheckOffered(type);
    std::shared_ptr<EventQueue> queue;
    {
        const std::scoped_lock guard(lock_);
        const auto found = registered_.find(type);
        if (found == registered_.end())
            fail(GenTL::GC_ERR_NOT_INITIALIZED, "Event type " + std::to_string(type) + " is not registered");
        queue = std::move(found->second);
        registered_.erase(found);
    }
    session_.handles.Remove(*queue);
    queue->Close();
}

std::shared_ptr<EventQueue> EventSource::Registered(GenTL::EVENT_TYPE type) const {
    const std::scoped_lock guard(lock_);
    const auto found = registered_.find(type);
    return found == registered_.end() ? nullptr : found->second;
}

void EventSource::Fire(GenTL::EVENT_TYPE type, std::string data) {
    if (const auto queue = Registered(type)) queue->Push({std::move(data), nullptr});
}

void EventSource::FireError(GC_ERROR code, std::string_view text) {
    if (!notify_errors) return;
    if (const auto queue = Registered(GenTL::EVENT_ERROR)) queue->Push(error_entry(code, text));
}

void EventSource::Disconnect() {
    const std::scoped_lock guard(lock_);
    disconnected_ = true;
    for (auto& [type, queue] : registered_) queue->Disconnect();
}

void EventSource::Close() {
    std::map<GenTL::EVENT_TYPE, std::shared_ptr<EventQueue>> ended;
    {
        const std::scoped_lock guard(lock_);
        ended.swap(registered_);
    }
    for (auto& [type, queue] : ended) {
        session_.handles.Remove(*queue);
        queue->Close();
    }
}

Module::Module(Session& session, const char* port_name, const char* description_name, std::vector<GenTL::EVENT_TYPE> events,
               OwnEvent own_event)
    : session_(session), features_(port_name, description_name), events_(session, std::move(events)), own_event_(own_event) {}

void Module::FinishFeatures() {
    features_.Category("EventControl");
    std::vector<std::string> kinds{"Error"};
    if (own_event_.name) kinds.emplace_back(own_event_.name);
    features_.Enumeration(
        "EventSelector", "The kind of event that EventNotification is about", kinds, [this] { return selected_event_; },
        [this](int64_t value) { selected_event_ = value; });
    features_.SelectedBy("EventSelector");
    features_.Enumeration(
        "EventNotification", "Whether events of this kind are sent", {"Off", "On"},
        [this] { return selected_event_ == 0 ? events_.notify_errors.load() : notify_own_event_; },
        [this](int64_t value) {
            if (selected_event_ == 0)
                events_.notify_errors = value == 1;
            else
                notify_own_event_ = value == 1;
        });
    features_.SelectedBy({});
    if (own_event_.name) features_.Event(std::string("Event") + own_event_.name, own_event_.tool_tip, own_event_.id);
    features_.Finish();
}

void Module::TellOwnEvent() {
    if (notify_own_event_) events_.Fire(GenTL::EVENT_MODULE, module_event(own_event_.id));
}

void Module::Retire() {
    session_.handles.Remove(*this);
    events_.Close();
}

EventSource& events_of(Object& object) {
    if (auto* module = dynamic_cast<Module*>(&object)) return module->Events();
    if (dynamic_cast<Buffer*>(&object)) fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "Buffers have no events");
    fail(GenTL::GC_ERR_INVALID_HANDLE, "The handle is not the one of a module");
}

DescriptionInfo Module::Description() {
    DescriptionInfo info;
    info.url = features_.Url();
    return info;
}

}  // namespace kivsim
