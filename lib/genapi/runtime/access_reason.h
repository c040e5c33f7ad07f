/// Why a node cannot be read or written just now: the sentences that AccessException needs so that its reader knows what to
/// change.
#pragma once

#include <string>

namespace kiv::genapi {

class Node;

/// "It is locked: 'TLParamsLocked' is 1." Follows the references to the node that is the cause; nodes other than the one asked
/// for are named. Never throws; "" when the cause is not found.
std::string access_reason(Node& node, bool forWriting) noexcept;

}  // namespace kiv::genapi
