/// Reading and writing a node's value through whichever interface suits the call; the order of the interfaces is part of the
/// behaviour.
///
/// Every function answers false when the node offers none of the interfaces; GenICam exceptions pass through.
#pragma once

#include <GenApi/i_node.h>

#include <cstdint>

namespace kiv {

/// Integer, else enumeration (its integer value), else boolean (0 or 1, verify ignored).
bool get_int64(GenApi::INode& node, bool verify, std::int64_t& value);
bool set_int64(GenApi::INode& node, bool verify, std::int64_t value);

/// Enumerations: display names first, then symbolic names. Booleans: a fixed list of words is true, everything else false. Any
/// other value: its own text form.
bool set_text(GenApi::INode& node, bool verify, const char* text);

}  // namespace kiv
