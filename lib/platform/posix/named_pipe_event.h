/// Named events of this system: a FIFO in the user's runtime folder, set while it holds a byte.
///
/// Every holder keeps a shared lock on the FIFO. Whoever can have it alone knows that nobody else is left: the last one to close
/// removes the name, and a name that a killed process left behind is recognised by the next one who finds it.
#pragma once

#include <optional>
#include <string>

#include "kiv/platform/event.h"
#include "posix/file_descriptor.h"

namespace kiv::platform {

struct NamedPipe {
    FileDescriptor pipe;
    ResetMode mode;
    std::string file;
};

NamedPipe create_named_pipe(const std::string& name, ResetMode mode);
std::optional<NamedPipe> open_named_pipe(const std::string& name);

/// Closes the pipe and removes the name when this was its last holder.
void close_named_pipe(int pipe, const std::string& file) noexcept;

}  // namespace kiv::platform
