#include "runtime/callback_book.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "runtime/node.h"

namespace kiv::genapi {

using GenApi::CallbackHandleType;

namespace {

/// Which node each callback of the process belongs to: Deregister() is given a handle and nothing else. Handles are numbers that
/// are never used twice, so that one that is no longer good finds nothing.
class LiveHandles {
public:
    CallbackHandleType Add(GenApi::INode& node) {
        const std::scoped_lock hold(mutex_);
        nodes_.emplace(++last_, &node);
        return last_;
    }
    void Remove(CallbackHandleType handle) {
        const std::scoped_lock hold(mutex_);
        nodes_.erase(handle);
    }
    GenApi::INode* Find(CallbackHandleType handle) {
        const std::scoped_lock hold(mutex_);
        const auto found = nodes_.find(handle);
        return found == nodes_.end() ? nullptr : found->second;
    }

private:
    std::mutex mutex_;
    CallbackHandleType last_ = 0;
    std::unordered_map<CallbackHandleType, GenApi::INode*> nodes_;
};

LiveHandles& live_handles() {
    // Never destroyed: a program's own statics may hold node maps when the process exits.
    static LiveHandles& only = *std::make_unique<LiveHandles>().release();
    return only;
}

}  // namespace

CallbackBook::~CallbackBook() {
    for (const auto& [node, entries] : entries_)
        for (const auto& entry : entries) live_handles().Remove(entry->handle);
}

CallbackHandleType CallbackBook::Add(Node& node, std::unique_ptr<GenApi::CNodeCallback> callback) {
    auto entry = std::make_shared<Entry>();
    entry->callback = std::move(callback);
    auto& entries = entries_[&node];
    entries.reserve(entries.size() + 1);
    entry->handle = live_handles().Add(node);
    const auto handle = entry->handle;
    entries.push_back(std::move(entry));
    nodes_ += node.hasCallbacks_ ? 0 : 1;
    node.hasCallbacks_ = true;
    return handle;
}

bool CallbackBook::Remove(Node& node, CallbackHandleType handle) {
    const auto found = entries_.find(&node);
    if (found == entries_.end()) return false;
    auto& entries = found->second;
    const auto it = std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry->handle == handle; });
    if (it == entries.end()) return false;
    live_handles().Remove(handle);
    (*it)->removed = true;
    const auto last = std::move(*it);  // destroying it may run code of the application: not before the book is in order
    entries.erase(it);
    node.hasCallbacks_ = !entries.empty();
    nodes_ -= node.hasCallbacks_ ? 0 : 1;
    return true;
}

void CallbackBook::Wait(Node& node) {
    if (!node.hasCallbacks_ || node.isWaiting_) return;
    node.isWaiting_ = true;
    waiting_.push_back(&node);
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

namespace GenApi {

void Deregister(CallbackHandleType handle) {
    if (auto* node = kiv::genapi::live_handles().Find(handle)) node->DeregisterCallback(handle);
}

}  // namespace GenApi
