/// From a delivered buffer to the record that callbacks receive.
#pragma once

#include <kiv/image_info.h>

#include "acquisition/buffer_ring.h"

namespace ImageLib {

/// Asks the producer about one buffer. Fields that it cannot tell keep what the record held before. False when base, size, width
/// or height are not to be had, or lie outside the announced memory: such a buffer must not be looked at.
bool describe_buffer(const GenICam::Factory::CTLWrapper& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer,
                     const BufferRing& ring, bool is_gige, K_IMAGE_INFO& info);

}  // namespace ImageLib
