/// A camera's "PixelFormat" entries, and what the catalogue makes of them.
#pragma once

#include <cstdint>

#include "camera/camera.h"

namespace kiv {

/// Enters each entry of the camera's PixelFormat into its tables. Throws StatusError: K_ST_NO_DATA without a node map,
/// K_ST_INVALID_PARAMETER without such an enumeration. GenICam exceptions pass through; what was entered before stays.
void translate_pixel_formats(GenICam::Factory::CCameraClass& camera);

/// The tables, filled when they are first needed; a camera whose formats cannot be read has empty ones.
PixelFormatTables& pixel_formats(GenICam::Factory::CCameraClass& camera) noexcept;

/// The catalogue's code for the one that a buffer of this camera reports; Mono8 when the camera lists no such format.
std::uint64_t local_pixel_type(GenICam::Factory::CCameraClass& camera, std::uint64_t reported) noexcept;

}  // namespace kiv
