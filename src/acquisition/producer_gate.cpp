#include "acquisition/producer_gate.h"

#include <mutex>
#include <vector>

namespace ImageLib {

void keep_loaded(std::shared_ptr<const void> producer_code) {
    struct Kept {
        std::mutex lock;
        std::vector<std::shared_ptr<const void>> code;
    };
    // Never destroyed: the thread may be inside while the process exits.
    static Kept& kept = *std::make_unique<Kept>().release();
    std::lock_guard guard(kept.lock);
    kept.code.push_back(std::move(producer_code));
}

}  // namespace ImageLib
