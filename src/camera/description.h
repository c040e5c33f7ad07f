/// The GenICam description of a module: from the URL that its port reports to the XML text.
#pragma once

#include <string>

#include "transport/tl_wrapper.h"

namespace kiv {

/// More than any description needs; what claims to be larger is refused before memory is asked for.
inline constexpr std::uint64_t longest_description = 64ull << 20;

/// The first description URL of the port. Throws StatusError: the producer's status, or K_ST_NOT_IMPLEMENTED.
std::string description_url(const GenICam::Factory::CTLWrapper& producer, GenTL::PORT_HANDLE port);

/// Fetches what the URL names: from the module's registers by way of the cache folder, or from a file; unzipped where it is
/// zipped. Throws GenICam exceptions (bad URL, failed transfer, refused size), StatusError K_ST_IO (cannot be stored or
/// unpacked).
std::string fetch_description(const GenICam::Factory::CTLWrapper& producer, GenTL::PORT_HANDLE port, const std::string& url);

}  // namespace kiv
