/// The serial ports of this machine on which a Camera Link camera may be, as they were when it was made.
///
/// Ports of frame grabbers are found through their makers' serial libraries: in the folders of KIV_CAMERA_LINK_PATH, in the
/// folder that the system's record of Camera Link names, and beside this library. Serial ports of the system are taken only when
/// KIV_CAMERA_LINK_PORTS names them: what hangs on the others may not like to be spoken to. The word "all" there means all.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CLProtocol/serial.h"

namespace CLProtocol {

class PortDirectory {
public:
    /// Looks at libraries and settings anew. A library that cannot be used is passed over, with a word in the debugger output.
    static PortDirectory Find();

    /// Manufacturer#PortName of each: libraries in the order of the folders and their names, then the system's ports. All
    /// different.
    std::vector<std::string> Ids() const;
    /// Throws for a port that is not in the list, or cannot be opened.
    std::unique_ptr<Serial> Open(const std::string& id) const;

    static constexpr std::size_t most_ports = 64;

private:
    struct Port {
        std::string id;
        std::function<std::unique_ptr<Serial>()> open;
    };

    void Add(std::string id, std::function<std::unique_ptr<Serial>()> open);
    void AddLibrary(const std::string& path);

    std::vector<Port> ports_;
};

}  // namespace CLProtocol
