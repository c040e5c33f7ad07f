/// A node map's features as the tree that its categories make: walked once for every command, printed the same way by all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "feature.h"

struct FeatureFilter {
    uint32_t level = 2;  ///< highest visibility that is shown; guru: all that is meant for people
    bool all = false;    ///< features that are not implemented, and entries that are not available, too
};

/// The names of the categories above a feature, outermost first.
using Path = std::vector<std::string>;
/// How to get from a category to what stands directly below it.
using ChildrenOf = std::function<std::vector<Node>(const Node& category)>;
using FeatureVisitor = std::function<void(const Feature& feature, const Path& path)>;

/// Hands what is below a category and passes the filter to a visitor, in the description's order, categories before their
/// features. Throws ApiError when a category does not tell its features.
void walk_features(const Node& category, const FeatureFilter& filter, const ChildrenOf& children, const FeatureVisitor& visit);

/// One or more lines: name, access, value, and what can be set. `depth` is the number of steps that the name is indented.
void print_feature(const Feature& feature, std::size_t depth, bool all);

/// The feature with the key "category" for its path.
nlohmann::json to_json(const Feature& feature, const Path& path);
