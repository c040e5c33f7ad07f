/// A scripted producer's module, held by the test through its side door, with a fresh world.
#pragma once

#include <kiv/platform/dynamic_library.h>

#include <string>

#include "support/scripted_world.h"

namespace kiv_test {

/// The modules that the build made.
std::string scripted_gev();            ///< GigE Vision, every extension entry
std::string scripted_u3v();            ///< USB3 Vision, no extension entry
std::string scripted_no_chunk_data();  ///< lacks DSGetBufferChunkData, a mandatory entry
std::string scripted_gap();            ///< GigE Vision, lacks the second entry of the extension group

class ScriptedProducer {
public:
    explicit ScriptedProducer(const std::string& path) : module_(path) {
        control_ = module_.Function<const scripted::Control*()>("Scripted_Control")();
        control_->reset();
    }

    scripted::World* operator->() const { return control_->world(); }
    scripted::World& operator*() const { return *control_->world(); }
    const std::string& Path() const { return module_.Path(); }

private:
    kiv::platform::DynamicLibrary module_;
    const scripted::Control* control_ = nullptr;
};

}  // namespace kiv_test
