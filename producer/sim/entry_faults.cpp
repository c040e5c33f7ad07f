#include "entry_faults.h"

#include <algorithm>

#include "GenTL/extensions.h"

namespace kivsim {

std::atomic<size_t>& EntryFaults::armed() noexcept {
    static constinit std::atomic<size_t> count{0};
    return count;
}

void EntryFaults::Add(const EntryFault& fault) {
    const std::scoped_lock guard(lock_);
    faults_.push_back({fault, 0});
    ++armed();
}

void EntryFaults::Clear() {
    const std::scoped_lock guard(lock_);
    armed() -= faults_.size();
    faults_.clear();
}

void EntryFaults::Meet(std::string_view entry) {
    std::chrono::milliseconds delay{0};
    GC_ERROR status = GenTL::GC_ERR_SUCCESS;
    {
        const std::scoped_lock guard(lock_);
        for (auto& [fault, seen] : faults_) {
            if (fault.entry != entry) continue;
            ++seen;
            const bool hit = seen >= fault.first_call && (fault.calls == 0 || seen - fault.first_call < fault.calls);
            if (!hit) continue;
            delay = std::max(delay, fault.delay);
            if (status == GenTL::GC_ERR_SUCCESS) status = fault.status;
        }
    }
    if (delay.count() > 0) Delay(delay);
    if (status != GenTL::GC_ERR_SUCCESS) fail(status, std::string(entry) + " was asked to fail");
}

void EntryFaults::Delay(std::chrono::milliseconds time) {
    std::unique_lock guard(lock_);
    released_.wait_for(guard, time, [this] { return closing_; });
}

void EntryFaults::Release() {
    const std::scoped_lock guard(lock_);
    closing_ = true;
    released_.notify_all();
}

bool is_entry(std::string_view name) {
    static constexpr std::string_view names[] = {
#define KIVSIM_ENTRY(entry, arguments) #entry,
        GENTL_FUNCTION_LIST(KIVSIM_ENTRY) GENTL_EXTENSION_LIST(KIVSIM_ENTRY)
#undef KIVSIM_ENTRY
    };
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

}  // namespace kivsim
