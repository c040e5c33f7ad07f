/// Chains of operations, written as text: "gamma 0.5; flip horizontal; rotate 90". What there is stands in VL.h.
#pragma once

#include <VL.h>

#include <string>
#include <string_view>
#include <vector>

#include "image/image.h"

namespace kiv::vl {

/// One operation as it was written.
struct Step {
    std::string name;
    std::vector<std::string> arguments;
};

class Chain {
public:
    /// text is UTF-8. Throws an Error that names the word which is wrong.
    explicit Chain(std::string_view text);

    /// From "demosaic ..." as the first operation, which is taken out; otherwise bilinear.
    VL_DEMOSAIC TakeDemosaic();
    /// All operations from left to right. Alpha is left out before the first.
    Image Run(Image image) const;

private:
    std::vector<Step> steps_;
};

}  // namespace kiv::vl
