#include "lint_reading.h"

#include <GenApi/GenApi.h>
#include <GenICam/exceptions.h>

#include <algorithm>
#include <cstring>

namespace {

class Zeros final : public GenApi::IPort {
public:
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }
    void Read(void* buffer, int64_t, int64_t length) override { std::memset(buffer, 0, static_cast<std::size_t>(length)); }
    void Write(const void*, int64_t, int64_t) override {}
};

/// Connects all ports; the map outlives this, so they are disconnected again.
class Connection {
public:
    explicit Connection(GenApi::INodeMap& map) : map_(map) { ConnectTo(&zeros_); }
    ~Connection() { ConnectTo(nullptr); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

private:
    void ConnectTo(GenApi::IPort* port) const {
        GenApi::NodeList_t nodes;
        map_.GetNodes(nodes);
        for (GenApi::INode* node : nodes)
            if (node->GetPrincipalInterfaceType() == GenApi::intfIPort) map_.Connect(port, node->GetName());
    }

    GenApi::INodeMap& map_;
    Zeros zeros_;
};

const char* type_of(const GenICam::GenericException& error) {
    if (dynamic_cast<const GenICam::LogicalErrorException*>(&error)) return "LogicalErrorException";
    if (dynamic_cast<const GenICam::OutOfRangeException*>(&error)) return "OutOfRangeException";
    if (dynamic_cast<const GenICam::InvalidArgumentException*>(&error)) return "InvalidArgumentException";
    if (dynamic_cast<const GenICam::AccessException*>(&error)) return "AccessException";
    if (dynamic_cast<const GenICam::TimeoutException*>(&error)) return "TimeoutException";
    if (dynamic_cast<const GenICam::RuntimeException*>(&error)) return "RuntimeException";
    return "GenericException";
}

/// What an application asks of a number before it shows it.
void read_limits(GenApi::INode& node) {
    if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node)) {
        integer->GetMin(), integer->GetMax(), integer->GetInc();
    } else if (auto* number = dynamic_cast<GenApi::IFloat*>(&node)) {
        number->GetMin(), number->GetMax();
        if (number->HasInc()) number->GetInc();
    }
}

}  // namespace

std::string kind_of(const GenApi::INode& node) {
    GenApi::gcstring kind, attribute;
    node.GetProperty("NodeType", kind, attribute);
    return kind.str();
}

Reading read_all_features(GenApi::INodeMap& map) {
    Reading reading;
    const Connection connection(map);
    GenApi::NodeList_t nodes;
    map.GetNodes(nodes);
    for (GenApi::INode* node : nodes) {
        auto* value = dynamic_cast<GenApi::IValue*>(node);
        if (!value || node->GetPrincipalInterfaceType() == GenApi::intfICategory) continue;
        KindReading& kind = reading.kinds[kind_of(*node)];
        if (!GenApi::IsReadable(node->GetAccessMode())) {
            ++kind.not_readable;
            continue;
        }
        try {
            read_limits(*node);
            value->ToString();
            ++kind.values;
        } catch (const GenICam::GenericException& error) {
            ++kind.failed;
            reading.failures[type_of(error)].push_back({node->GetName().str(), error.GetDescription()});
        }
    }
    return reading;
}
