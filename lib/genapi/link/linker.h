/// Makes the nodes of a map out of its records: every name becomes a node, every number a number, every dependency an edge.
/// After that nothing looks up a name again.
#pragma once

#include "runtime/engine.h"

namespace kiv::genapi {

/// The engine holds a read table. A node that is described wrongly is made all the same and put down in the engine's faults; what
/// refers to a node that does not exist is put down in the table's.
void link(Engine& engine);

}  // namespace kiv::genapi
