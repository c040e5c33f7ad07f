/// The two rules by which texts leave the library.
#pragma once

#include <kiv/types.h>

#include <string_view>

namespace kiv::api {

/// The general rule: all or nothing, and the size always says what is needed. `buffer` may be null.
K_STATUS_CODES put_text(std::string_view text, char* buffer, uint32_t& size) noexcept;

/// The rule of node texts: a short buffer receives what fits. A size of 0 writes nothing.
K_STATUS_CODES put_node_text(std::string_view text, char* buffer, uint32_t& size) noexcept;

}  // namespace kiv::api
