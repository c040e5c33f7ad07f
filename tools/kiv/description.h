/// The GenICam description (XML) of a module.
#pragma once

#include <Kiv_Factory.h>

#include <string>

/// `module`: the transport layer itself, one of its interfaces, a camera, or a producer's own device handle.
std::string description_of(TRANSPORT_LAYER_HANDLE layer, void* module);
