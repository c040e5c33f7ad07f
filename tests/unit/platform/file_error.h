/// What a call says when it fails.
#pragma once

#include <kiv/platform/paths.h>

#include <string>

namespace kiv::test {

template <typename Body>
std::string file_error(Body body) {
    try {
        body();
    } catch (const platform::FileError& error) {
        return error.what();
    }
    return "no error";
}

}  // namespace kiv::test
