/// The callbacks of one map, and which nodes are waiting for theirs to be called.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "GenApi/node_callback.h"

namespace kiv::genapi {

class Node;

/// Guarded by the map's lock. A callback may be removed while it runs; it is destroyed when it has returned.
class CallbackBook {
public:
    struct Entry {
        std::unique_ptr<GenApi::CNodeCallback> callback;
        GenApi::CallbackHandleType handle = 0;
        bool removed = false;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    CallbackBook() = default;
    CallbackBook(const CallbackBook&) = delete;
    CallbackBook& operator=(const CallbackBook&) = delete;
    ~CallbackBook();

    GenApi::CallbackHandleType Add(Node& node, std::unique_ptr<GenApi::CNodeCallback> callback);
    bool Remove(Node& node, GenApi::CallbackHandleType handle);
    bool IsEmpty() const { return nodes_ == 0; }
    /// How many nodes have callbacks.
    size_t Nodes() const { return nodes_; }
    /// Does nothing for a node that has no callbacks, or that waits already.
    void Wait(Node& node);
    bool IsAnyWaiting() const { return !waiting_.empty(); }
    /// The callbacks of the waiting nodes, in the order in which the nodes began to wait.
    Entries TakeWaiting();

private:
    std::unordered_map<Node*, Entries> entries_;
    size_t nodes_ = 0;
    std::vector<Node*> waiting_;
};

}  // namespace kiv::genapi
