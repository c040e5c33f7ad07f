/// Chunk data of a grab: switching them on for its time, and reading their values for each image.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "node.h"
#include "temporary_settings.h"

/// Switches chunk mode on, and chunks: `which` is names of ChunkSelector with commas between them, "all", or empty for those that
/// the camera has on, or all where it has none on. Throws for a camera without chunks and for unknown names.
void switch_chunks_on(const Camera& camera, const std::string& which, TemporarySettings& settings);

/// The features whose values come with the images.
class ChunkFeatures {
public:
    /// To be made while no stream is open: what cannot be read then, among the features for chunks, is in the chunks.
    explicit ChunkFeatures(const Camera& camera);

    /// The values for the image that a stream's callback is being given, by the features' names; those that did not come with it
    /// are left out. For the stream's thread.
    nlohmann::json Read() const;

private:
    struct One {
        std::string name;
        Kind kind;
        Node node;
        std::vector<std::string> selects;  ///< of a selector: the features in the chunks that it is for
    };
    std::vector<One> features_;
};
