#include "runtime/engine_log.h"

#include <kiv/log/text.h>

#include <string>

#include "runtime/node.h"

namespace kiv::genapi {

namespace {

void say(log::Level level, const std::string& line) { log::write(log::Category::gen_api, level, line); }

std::string model_of(const Engine& engine) { return std::string(engine.table.info.modelName); }

/// "KivSim_5MC Width".
std::string subject(const Node& node) { return model_of(node.Context()) + " " + std::string(node.Name()); }

/// Whose bytes stand at a location: the node, or the first of several.
std::string nodes_at(const Engine& engine, uint32_t vertex) {
    if (vertex == no_vertex) return {};
    std::string name;
    size_t others = 0;
    for (const auto edge : engine.graph.From(vertex)) {
        if (!edge.Is(Link::Bytes) || edge.target >= engine.nodes.size()) continue;
        if (name.empty())
            name = engine.nodes[edge.target]->Name();
        else
            ++others;
    }
    if (name.empty()) return {};
    return " (" + name + (others ? " and " + std::to_string(others) + " more" : "") + ")";
}

}  // namespace

void log_map(const Engine& engine) {
    const auto& info = engine.table.info;
    say(log::Level::info, model_of(engine) + ": " + std::to_string(engine.nodes.size()) + " nodes, described by " +
                              std::string(info.vendorName) + " for schema " + std::to_string(info.schema[0]) + "." +
                              std::to_string(info.schema[1]));
    for (const auto& fault : engine.table.faults) say(log::Level::warn, model_of(engine) + ": " + fault);
}

void log_transfer(const Node& port, const char* what, uint32_t vertex, int64_t address, std::span<const uint8_t> bytes) {
    const auto& engine = port.Context();
    say(log::Level::debug, subject(port) + ": " + what + " " + std::to_string(bytes.size()) + " bytes at " +
                               log::hex(static_cast<uint64_t>(address)) + nodes_at(engine, vertex) + " in " + engine.operation +
                               ": " + log::hex_bytes(bytes.data(), bytes.size()));
}

void log_write(const Node& node, const char* operation) { say(log::Level::debug, subject(node) + ": " + operation); }

void log_invalidation(const Engine& engine) { say(log::Level::debug, model_of(engine) + ": all nodes are to be read again"); }

void log_failure(const Node& node, const char* operation, const GenICam::GenericException& error) {
    const std::string at = error.GetNodeName();
    const bool elsewhere = !at.empty() && at != node.Name();
    say(log::Level::warn,
        subject(node) + ": " + operation + " failed" + (elsewhere ? " at " + at : "") + ": " + error.GetDescription());
}

void log_callback_failure(const std::exception_ptr& failure) {
    std::string reason = "an exception of a kind of its own";
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
    }
    say(log::Level::warn, "a callback threw: " + reason);
}

}  // namespace kiv::genapi
