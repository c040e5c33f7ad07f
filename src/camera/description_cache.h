/// The folder where descriptions from devices are kept as files, for people to look at and for the next time.
///
/// Its place is $(KIVSDK_ROOT) and GenICam/xml/TransportLayers/KIV below it. Files are replaced as one step, so that a second
/// process never reads half of one. Failures to store, unpack or read are StatusError K_ST_IO; the reason goes to the debugger
/// output.
#pragma once

#include <string>

namespace kiv {

class DescriptionCache {
public:
    DescriptionCache();

    const std::string& Folder() const { return folder_; }

    /// Stores what the device delivered under `name` and returns the XML, unpacked when it is an archive.
    std::string Keep(const std::string& name, std::string bytes) const;

    /// Returns the XML in a file of this machine; an archive is unpacked into memory, nothing is stored.
    std::string Open(const std::string& path) const;

private:
    std::string folder_;
};

}  // namespace kiv
