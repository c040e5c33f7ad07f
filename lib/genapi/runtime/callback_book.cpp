#include "runtime/callback_book.h"

#include <algorithm>
#include <utility>

#include "runtime/node.h"

namespace kiv::genapi {

using GenApi::CallbackHandleType;

CallbackHandleType CallbackBook::Add(Node& node, std::unique_ptr<GenApi::CNodeCallback> callback) {
    const auto handle = reinterpret_cast<CallbackHandleType>(callback.get());
    auto entry = std::make_shared<Entry>();
    entry->callback = std::move(callback);
    entries_[&node].push_back(std::move(entry));
    node.hasCallbacks_ = true;
    return handle;
}

bool CallbackBook::Remove(Node& node, CallbackHandleType handle) {
    const auto found = entries_.find(&node);
    if (found == entries_.end()) return false;
    auto& entries = found->second;
    const auto it = std::find_if(entries.begin(), entries.end(), [&](const auto& entry) {
        return reinterpret_cast<CallbackHandleType>(entry->callback.get()) == handle;
    });
    if (it == entries.end()) return false;
    (*it)->removed = true;
    entries.erase(it);
    node.hasCallbacks_ = !entries.empty();
    return true;
}

CallbackBook::Entries CallbackBook::TakeWaiting() {
    Entries taken;
    for (auto* node : std::exchange(waiting_, {})) {
        node->isWaiting_ = false;
        if (const auto found = entries_.find(node); found != entries_.end())
            taken.insert(taken.end(), found->second.begin(), found->second.end());
    }
    return taken;
}

}  // namespace kiv::genapi
