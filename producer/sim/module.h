/// What system, interface, device and data stream have in common: a handle, a register space with a node map description, and
/// events that a consumer can register.
///
/// Locking. The tree of modules is guarded by one lock (Session::tree) that the exported functions take before they call any
/// member here, unless the member says otherwise. Nothing waits under it.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "event_queue.h"
#include "feature_list.h"
#include "handles.h"
#include "port.h"

namespace kivsim {

struct Session;

/// The registered events of one module. Guarded by a lock of its own: threads of a stream fire them.
class EventSource {
public:
    EventSource(Session& session, std::vector<GenTL::EVENT_TYPE> offered) : session_(session), offered_(std::move(offered)) {}

    std::shared_ptr<EventQueue> Register(GenTL::EVENT_TYPE type);
    void Unregister(GenTL::EVENT_TYPE type);
    /// Null when nobody registered it.
    std::shared_ptr<EventQueue> Registered(GenTL::EVENT_TYPE type) const;
    /// To those who registered it; entries that nobody wants are dropped.
    void Fire(GenTL::EVENT_TYPE type, std::string data);
    void FireError(GC_ERROR code, std::string_view text);
    /// The camera is gone: waits end with IO, now and for events that are registered later.
    void Disconnect();
    void Close();

    /// Which faults calls with a handle of these events meet. To be set before the first Register.
    void BelongTo(EntryFaults* faults) { faults_ = faults; }
    /// Called in each Register, before the handle is handed out. To be set before the first one.
    void OnRegister(std::function<void(EventQueue&)> call) { on_register_ = std::move(call); }

    std::atomic<bool> notify_errors{true};  ///< EventNotification of the node map

private:
    void CheckOffered(GenTL::EVENT_TYPE type) const;

    Session& session_;
    const std::vector<GenTL::EVENT_TYPE> offered_;
    std::function<void(EventQueue&)> on_register_;
    EntryFaults* faults_ = nullptr;
    mutable std::mutex lock_;
    std::map<GenTL::EVENT_TYPE, std::shared_ptr<EventQueue>> registered_;
    bool disconnected_ = false;
};

/// An event that a module tells of itself: an entry of its EventSelector.
struct OwnEvent {
    const char* name = nullptr;
    const char* tool_tip = nullptr;
    uint64_t id = 0;
};

class Module : public Object, public Port {
public:
    Module(Session& session, const char* port_name, const char* description_name, std::vector<GenTL::EVENT_TYPE> events,
           OwnEvent own_event = {});

    EventSource& Events() { return events_; }

    void Read(uint64_t address, std::span<std::byte> out) override { features_.Read(address, out); }
    void Write(uint64_t address, std::span<const std::byte> in) override { features_.Write(address, in); }
    DescriptionInfo Description() override;

protected:
    /// The features that every module has; the last ones of the list.
    void FinishFeatures();
    /// Fires it, if it is switched on.
    void TellOwnEvent();
    /// Makes the handle invalid and ends the events.
    void Retire();

    Session& session_;
    FeatureList features_;

private:
    EventSource events_;
    const OwnEvent own_event_;
    bool notify_own_event_ = false;
    int64_t selected_event_ = 0;
};

/// Throws NOT_IMPLEMENTED for a buffer, INVALID_HANDLE for what cannot have events.
EventSource& events_of(Object& object);

/// Vendor and version of the producer, as all modules report them.
extern const char* const producer_vendor;
extern const char* const producer_version;

/// The word for a transport type in the node maps is not the one of the C interface: its index in transport_words().
const std::vector<std::string>& transport_words();
int64_t transport_word_index(const std::string& tl_type);

}  // namespace kivsim
