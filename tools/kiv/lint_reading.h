/// Reading every feature of a description over a device whose memory is all zeros: what a camera that was just switched on, and
/// is not what its description says, would show.
#pragma once

#include <GenApi/i_node_map.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

struct ReadFailure {
    std::string node;
    std::string text;
};

struct KindReading {
    std::size_t values = 0;
    std::size_t not_readable = 0;  ///< not implemented, not available, write only
    std::size_t failed = 0;
};

struct Reading {
    std::map<std::string, KindReading> kinds;                  ///< by the element of the node
    std::map<std::string, std::vector<ReadFailure>> failures;  ///< by the type of the exception
};

/// The map's ports are connected to the memory for as long as this runs.
Reading read_all_features(GenApi::INodeMap& map);

/// The element that describes a node.
std::string kind_of(const GenApi::INode& node);
