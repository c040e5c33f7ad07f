/// The library's own classification of nodes.
#pragma once

#include <GenApi/i_node.h>
#include <kiv/node.h>

#include <optional>

namespace kiv {

/// By the node's "NodeType" property, else by its interfaces. Nothing when the node does not have that property at all.
std::optional<K_NODE_TYPE> node_type(GenApi::INode& node);

}  // namespace kiv
