/// What the log hears of a node map, in the category GenApi. Nothing here is called unless the line is wanted.
#pragma once

#include <kiv/log/log.h>

#include <cstdint>
#include <exception>
#include <span>
#include <string_view>

#include "GenICam/exceptions.h"

namespace kiv::genapi {

class Node;
struct Engine;

inline bool log_wanted(log::Level level) { return log::wanted(log::Category::gen_api, level); }

/// The whole map: how many nodes it has, whose it is, and what is wrong with its description.
[[gnu::cold]] void log_map(const Engine& engine);
/// `vertex` is that of the location, or nobody's.
inline constexpr uint32_t no_vertex = UINT32_MAX;
[[gnu::cold]] void log_transfer(const Node& port, const char* what, uint32_t vertex, int64_t address,
                                std::span<const uint8_t> bytes);
/// A call that changes a node, before the transfers that it makes.
[[gnu::cold]] void log_write(const Node& node, const char* operation);
[[gnu::cold]] void log_invalidation(const Engine& engine);
/// A call of a node that ends with an exception.
[[gnu::cold]] void log_failure(const Node& node, const char* operation, const GenICam::GenericException& error);
[[gnu::cold]] void log_callback_failure(const std::exception_ptr& failure);

}  // namespace kiv::genapi
