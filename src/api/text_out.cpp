#include "api/text_out.h"

#include <algorithm>
#include <utility>

namespace kiv::api {

K_STATUS_CODES put_text(std::string_view text, char* buffer, uint32_t& size) noexcept {
    const auto needed = static_cast<uint32_t>(text.size() + 1);
    const auto capacity = std::exchange(size, needed);
    if (!buffer || capacity < needed) return K_ST_INVALID_BUFFER_SIZE;
    buffer[text.copy(buffer, text.size())] = '\0';
    return K_ST_SUCCESS;
}

K_STATUS_CODES put_node_text(std::string_view text, char* buffer, uint32_t& size) noexcept {
    const auto needed = static_cast<uint32_t>(text.size() + 1);
    const auto capacity = std::exchange(size, needed);
    if (capacity > 0) buffer[text.copy(buffer, std::min(needed, capacity) - 1)] = '\0';
    return needed <= capacity ? K_ST_SUCCESS : K_ST_INVALID_BUFFER_SIZE;
}

}  // namespace kiv::api
