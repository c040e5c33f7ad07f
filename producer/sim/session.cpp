#include "session.h"

#include <memory>

#include "kiv/platform/paths.h"
#include "system.h"

namespace kivsim {
namespace {

struct Current {
    std::mutex lock;
    std::shared_ptr<Session> session;
};

/// Not destroyed at exit, because a consumer's own statics may still close what they opened; and not on the heap, because the
/// module may be unloaded.
union Undestroyed {
    Current state;
    Undestroyed() : state() {}
    ~Undestroyed() {}
};

Current& current() {
    static Undestroyed place;
    return place.state;
}

const char inside_this_module = 0;

}  // namespace

Session::Session() {
    module_path = kiv::platform::module_file(&inside_this_module);
    module_name = module_path.substr(module_path.find_last_of("/\\") + 1);
    try {
        configuration = load_configuration();
    } catch (const std::exception& error) {
        configuration = {};
        configuration_error = error.what();
    }
}

void Session::Release() {
    configuration.faults->Release();
    for (const InterfaceEntry& interface : configuration.interfaces)
        for (const CameraEntry& entry : interface.cameras) entry.state->Faults().Release();
}

void meet_faults(const char* entry, const void* handle) {
    if (!EntryFaults::Any()) return;
    std::shared_ptr<Session> session;
    {
        Current& state = current();
        const std::scoped_lock guard(state.lock);
        session = state.session;
    }
    if (!session) return;
    session->configuration.faults->Meet(entry);
    if (!handle) return;
    const auto object = session->handles.FindAny(handle);
    if (auto* faults = object ? object->Faults() : nullptr) faults->Meet(entry);
}

void begin_session() {
    Current& state = current();
    const std::scoped_lock guard(state.lock);
    if (state.session) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "GCInitLib was called already");
    state.session = std::make_shared<Session>();
    CallLog::Open(state.session->module_name);
}

void end_session() {
    std::shared_ptr<Session> ended;
    {
        Current& state = current();
        const std::scoped_lock guard(state.lock);
        if (!state.session) fail(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib was not called");
        ended.swap(state.session);
    }
    ended->Release();
    const std::scoped_lock guard(ended->tree);
    if (const auto system = ended->system) system->Close();
    CallLog::Close();
}

std::shared_ptr<Session> current_session() {
    Current& state = current();
    const std::scoped_lock guard(state.lock);
    if (!state.session) fail(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib was not called");
    return state.session;
}

}  // namespace kivsim
