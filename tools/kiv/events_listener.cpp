#include "events_listener.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "feature.h"
#include "node.h"
#include "text.h"

namespace {

struct DataNode {
    std::string name;
    Kind kind;
    Node node;
};

/// What is known of one kind of event.
struct Listening {
    std::string event;
    std::optional<Node> id;  ///< whose value is the event's number
    std::vector<DataNode> data;
};

struct Inbox {
    std::mutex mutex;
    std::condition_variable filled;
    std::deque<DeviceEvent> events;
    std::map<std::string, Listening> listening;  ///< by the name of the node that hears of the event
};

Inbox& the_inbox() {
    static Inbox inbox;
    return inbox;
}

/// Nothing for a value that did not come: devices may send an event without its data.
std::optional<nlohmann::json> value_of(const Node& node, Kind kind) {
    try {
        if (node.IsReadable()) return node_value(node, kind);
    } catch (const ApiError&) {
        return std::nullopt;
    }
    return std::nullopt;
}

DeviceEvent read_event(const Listening& listening) {
    DeviceEvent event{std::chrono::system_clock::now(), listening.event, std::nullopt};
    if (listening.id)
        if (const auto id = value_of(*listening.id, Kind::kInteger)) event.id = id->get<int64_t>();
    for (const DataNode& data : listening.data)
        if (const auto value = value_of(data.node, data.kind)) event.values[data.name] = *value;
    return event;
}

/// Runs inside the node map's lock, on the thread that delivers the event.
void K_CALL on_event(void* node) {
    try {
        const std::string name = Node(static_cast<NODE_HANDLE>(node)).Name();
        Inbox& inbox = the_inbox();
        const Listening* listening = nullptr;
        {
            const std::lock_guard lock(inbox.mutex);
            const auto found = inbox.listening.find(name);
            if (found != inbox.listening.end()) listening = &found->second;
        }
        if (listening != nullptr) add_event(read_event(*listening));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kiv: warning: an event was lost: %s\n", failure.what());
    }
}

/// The features of an event's category, whose name is one of two by the age of the camera.
std::vector<Node> data_nodes(const Camera& camera, const std::string& event) {
    for (const std::string& category : {"Event" + event + "Data", event + "EventData"})
        if (const NODE_HANDLE node = camera.FindNode(category)) return Node(node).SubFeatures(camera.Get());
    std::vector<Node> nodes;
    for (const char* data : {"", "Timestamp", "FrameID"})
        if (const NODE_HANDLE node = camera.FindNode("Event" + event + data)) nodes.emplace_back(node);
    return nodes;
}

}  // namespace

void listen_to(const Camera& camera, const std::string& event) {
    Listening listening{event, std::nullopt, {}};
    for (const Node& node : data_nodes(camera, event)) {
        const std::string name = node.Name();
        if (name == "Event" + event)
            listening.id = node;
        else if (node.GetKind() != Kind::kCategory && node.GetKind() != Kind::kCommand)
            listening.data.push_back({name, node.GetKind(), node});
    }
    if (!listening.id && listening.data.empty())
        throw ToolError(ExitCode::kFailed,
                        "the camera describes no node that hears of the event \"" + printable(event) + "\" (Event" + event + ")");
    const Node heard = listening.id ? *listening.id : listening.data.front().node;
    Inbox& inbox = the_inbox();
    {
        const std::lock_guard lock(inbox.mutex);
        inbox.listening.insert_or_assign(heard.Name(), std::move(listening));
    }
    check(K_Node_RegisterCallback(heard.Handle(), on_event), "K_Node_RegisterCallback", heard.Name());
}

void add_event(DeviceEvent&& event) {
    Inbox& inbox = the_inbox();
    {
        const std::lock_guard lock(inbox.mutex);
        inbox.events.push_back(std::move(event));
    }
    inbox.filled.notify_one();
}

std::optional<DeviceEvent> take_event(std::chrono::milliseconds wait) {
    Inbox& inbox = the_inbox();
    std::unique_lock lock(inbox.mutex);
    if (!inbox.filled.wait_for(lock, wait, [&inbox] { return !inbox.events.empty(); })) return std::nullopt;
    std::optional<DeviceEvent> event(std::move(inbox.events.front()));
    inbox.events.pop_front();
    return event;
}
