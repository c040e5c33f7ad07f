#include "imaging/last_view.h"

#include <atomic>

namespace kiv {

namespace {
std::atomic<VL_VIEW_HANDLE> last{nullptr};
}

void set_last_view(VL_VIEW_HANDLE view) noexcept { last = view; }

VL_VIEW_HANDLE last_view() noexcept { return last; }

}  // namespace kiv
