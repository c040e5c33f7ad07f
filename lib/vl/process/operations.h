/// The operations of a chain, by name.
#pragma once

#include <string>
#include <string_view>

#include "image/image.h"
#include "process/chain.h"

namespace kiv::vl {

struct Operation {
    std::string_view name;
    std::size_t least;  ///< arguments
    std::size_t most;
    /// Throws an Error for arguments that make no sense.
    Image (*run)(Image image, const Step& step);
};

/// Null for an unknown name.
const Operation* find_operation(std::string_view name);

/// The number at a place of the arguments; Error where it is none or not within least ... most.
double number_of(const Step& step, std::size_t place, double least, double most);

}  // namespace kiv::vl
