#include "runtime/node_map.h"

#include <algorithm>

#include "kiv/genapi/load_node_map.h"
#include "link/linker.h"
#include "link/number_text.h"
#include "nodes/number_node.h"
#include "nodes/port_node.h"
#include "record/merge_records.h"
#include "record/record_reader.h"
#include "runtime/engine_log.h"
#include "runtime/node.h"
#include "sources/formula_sources.h"

namespace kiv::genapi {

using namespace GenApi;

NodeMap::NodeMap(std::string description, std::optional<std::string> injected, const std::string& deviceName) {
    engine_.map = this;
    engine_.deviceName = deviceName;
    read_records(std::move(description), engine_.table);
    require_known_schema(engine_.table.info);
    if (injected) {
        auto more = std::make_unique<RecordTable>();
        read_records(std::move(*injected), *more);
        require_known_schema(more->info);
        merge_records(engine_.table, std::move(more));
    }
    link(engine_);
    if (log_wanted(log::Level::warn)) log_map(engine_);
    for (auto* node : engine_.polled) polled_.push_back({node, parse_integer(node->Text(Tag::PollingTime)).value_or(0)});
}

void NodeMap::GetNodes(NodeList_t& nodes) const {
    nodes.clear();
    nodes.reserve(engine_.nodes.size());
    for (auto* node : engine_.nodes) nodes.push_back(node);
}

INode* NodeMap::GetNode(std::string_view name) const { return engine_.Find(name); }

INode* NodeMap::GetNodeByIndex(uint64_t index) const noexcept {
    return index < engine_.nodes.size() ? engine_.nodes[static_cast<size_t>(index)] : nullptr;
}

void NodeMap::InvalidateNodes() const {
    Operation scope(engine_, "InvalidateNodes");
    if (log_wanted(log::Level::debug)) log_invalidation(engine_);
    engine_.OutdateAll();
    scope.Finish();
}

bool NodeMap::Connect(IPort* port, std::string_view portName) const {
    auto* node = dynamic_cast<PortNode*>(engine_.Find(portName));
    if (!node) return false;
    node->SetPortImpl(port);
    return true;
}

/// Time counts only while the node is to be polled, and starts again when it has been.
bool NodeMap::IsDue(Polled& polled, int64_t elapsed) const {
    try {
        auto* blocker = polled.node->Target(Tag::pBlockPolling);
        const bool isBlocked = blocker && IsReadable(Combine(blocker->Mode(), RW)) && blocker->ReadTruth();
        if (isBlocked || !polled.node->IsPolledNow()) return polled.elapsed = 0, false;
    } catch (const std::exception&) {
        return false;  // not known whether polling is blocked
    }
    polled.elapsed += elapsed;
    if (polled.elapsed < polled.time) return false;
    polled.elapsed = 0;
    return true;
}

void NodeMap::Poll(int64_t elapsedMilliseconds) {
    Operation scope(engine_, "Poll");
    for (auto& polled : polled_)
        if (IsDue(polled, std::max<int64_t>(elapsedMilliseconds, 0))) engine_.Outdated(polled.node->Index());
    scope.Finish();
}

void NodeMap::RunOperation(void (*body)(void* context), void* context) {
    Operation scope(engine_, "RunTogether");
    body(context);
    scope.Finish();
}

bool NodeMap::ParseSwissKnifes(gcstring_vector* errors) const {
    Operation scope(engine_, "ParseSwissKnifes");
    bool isGood = true;
    const auto compile = [&](Node& node, auto* source) {
        auto* formulas = dynamic_cast<Compilable*>(source);
        if (!formulas) return;
        try {
            formulas->CompileAll(node);
        } catch (const GenICam::GenericException& error) {
            isGood = false;
            if (errors) errors->push_back(std::string(node.Name()) + ": " + error.GetDescription());
        }
    };
    for (auto* node : engine_.nodes) {
        if (auto* integer = dynamic_cast<IntegerNode*>(node)) compile(*node, integer->source_);
        if (auto* number = dynamic_cast<FloatNode*>(node)) compile(*node, number->source_);
    }
    scope.Finish();
    return isGood;
}

namespace {

constexpr Version_t engineVersion{2, 4, 0};
constexpr uint16_t engineBuild = 1;

}  // namespace

void NodeMap::GetGenApiVersion(Version_t& version, uint16_t& build) {
    version = engineVersion;
    build = engineBuild;
}

void NodeMap::GetSchemaVersion(Version_t& version) {
    const auto& schema = engine_.table.info.schema;
    version = {schema[0], schema[1], schema[2]};
}

void NodeMap::GetDeviceVersion(Version_t& version) {
    const auto& device = engine_.table.info.version;
    version = {device[0], device[1], device[2]};
}

std::unique_ptr<INodeMap> load_node_map(std::string description, const std::string& deviceName) {
    return std::make_unique<NodeMap>(std::move(description), std::nullopt, deviceName);
}

std::unique_ptr<INodeMap> load_merged_node_map(std::string description, std::string injected, const std::string& deviceName) {
    return std::make_unique<NodeMap>(std::move(description), std::move(injected), deviceName);
}

std::vector<std::string> description_faults(const INodeMap& map) {
    const auto* own = dynamic_cast<const NodeMap*>(&map);
    return own ? own->Faults() : std::vector<std::string>();
}

}  // namespace kiv::genapi
