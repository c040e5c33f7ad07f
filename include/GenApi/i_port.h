#pragma once

#include "GenApi/i_base.h"

namespace GenApi {

/// A space of addressed bytes. Transfers throw when they fail.
class KIV_GENICAM_API IPort : public IBase {
public:
    virtual void Read(void* buffer, int64_t address, int64_t length) = 0;
    virtual void Write(const void* buffer, int64_t address, int64_t length) = 0;
};

/// A port of the description, to which the real one is connected.
class KIV_GENICAM_API IPortConstruct : public IPort {
public:
    /// The port is borrowed until another one, or null, takes its place. What was read through the former one is forgotten.
    virtual void SetPortImpl(IPort* port) = 0;
    /// Yes: the bytes of each aligned quadlet are reversed on their way.
    virtual EYesNo GetSwapEndianess() = 0;
};

/// What a port says about the chunks that may stand behind it.
class KIV_GENICAM_API IChunkPort : public IBase {
public:
    /// Hexadecimal without prefix; "" for a port that is no chunk port.
    virtual gcstring GetChunkID() = 0;
    /// Yes: what was attached stays readable after its buffer is gone.
    virtual EYesNo CacheChunkData() = 0;
};

}  // namespace GenApi
