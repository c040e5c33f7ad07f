/// Walking the interfaces and devices of one producer.
#pragma once

#include <string>
#include <vector>

namespace GenICam::Factory {
class CTLWrapper;
struct ForceIpSettings;
}  // namespace GenICam::Factory

namespace kiv {

/// Updates the producer's lists, opens interfaces that are not open yet, and appends the identifier of each device that is not in
/// `cameras` yet. What a producer cannot say is skipped: the list then lacks it. The caller holds the factory's lock.
void list_cameras(const std::string& producer_key, GenICam::Factory::CTLWrapper& producer,
                  const GenICam::Factory::ForceIpSettings& force_ip, std::vector<std::string>& cameras);

}  // namespace kiv
