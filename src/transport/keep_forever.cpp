#include "transport/keep_forever.h"

#include <mutex>
#include <vector>

namespace kiv {

void keep_forever(std::shared_ptr<const void> thing) {
    struct Kept {
        std::mutex lock;
        std::vector<std::shared_ptr<const void>> things;
    };
    // Never destroyed: the thread may be inside while the process exits.
    static Kept& kept = *std::make_unique<Kept>().release();
    std::lock_guard guard(kept.lock);
    kept.things.push_back(std::move(thing));
}

}  // namespace kiv
