/// Builds the node map of a device description.
///
/// The text may stand as it came from the device: with a byte order mark, with zero bytes behind its end, with Latin-1
/// characters where UTF-8 was announced. A faulty node costs that node; a text that is no description at all, or one of a schema
/// that is not known yet, throws RuntimeException. Nothing is read from the device: the map has no port until Connect().
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "GenApi/i_node_map.h"

namespace kiv::genapi {

/// The map keeps `description`. `deviceName` is the port that Connect(port) takes.
std::unique_ptr<GenApi::INodeMap> load_node_map(std::string description, const std::string& deviceName = "Device");

/// The map of `description` with the nodes of `injected`, which is a description too. Of two nodes of one name the one of the
/// higher MergePriority stays; if neither is higher the merge is refused with a RuntimeException. Categories are united.
std::unique_ptr<GenApi::INodeMap> load_merged_node_map(std::string description, std::string injected,
                                                       const std::string& deviceName = "Device");

/// What was found wrong with the description of a map made by load_node_map(), a sentence each, naming the node.
std::vector<std::string> description_faults(const GenApi::INodeMap& map);

}  // namespace kiv::genapi
