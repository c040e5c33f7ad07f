/// Arguments that several families of functions take.
#pragma once

#include <VL.h>

#include "core/error.h"

namespace kiv::vl {

/// The record with a buffer that may be read.
inline const K_IMAGE_INFO& readable(const K_IMAGE_INFO* raw) {
    refuse_null(required(raw, "raw").image_data, "image_data");
    return *raw;
}

}  // namespace kiv::vl
