#pragma once

/// Everything that an application needs to work with node maps.

#include "GenApi/chunk_adapter.h"
#include "GenApi/event_adapter.h"
#include "GenApi/feature_bag.h"
#include "GenApi/node_callback.h"
#include "GenApi/node_map_ref.h"
#include "GenApi/pointer.h"
#include "GenApi/register_port_impl.h"
#include "GenApi/selector_set.h"
