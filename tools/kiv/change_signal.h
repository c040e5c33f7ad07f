/// Wakes a thread when a watched node says that its value may have changed.
#pragma once

#include <chrono>

#include "node.h"

/// From now on changes of the node are noticed, until its camera is closed.
void notice_changes(const Node& node);

/// Waits until a noticed node may have changed, but not longer than the given time. True when one may have since the last call.
/// For one thread.
bool wait_for_change(std::chrono::steady_clock::time_point deadline);
