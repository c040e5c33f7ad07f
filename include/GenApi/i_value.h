#pragma once

#include "GenApi/i_base.h"

namespace GenApi {

/// A node's value as text.
class KIV_GENICAM_API IValue : public IBase {
public:
    virtual INode* GetNode() = 0;
    /// Throws AccessException when the node is not readable. `verify` also checks the value's range.
    virtual gcstring ToString(bool verify = false, bool ignoreCache = false) = 0;
    /// Parses the text and sets the value. Throws InvalidArgumentException when the text is none of this kind of value.
    virtual void FromString(const gcstring& text, bool verify = true) = 0;
    /// Whether the next read would not touch the device.
    virtual bool IsValueCacheValid() const = 0;
};

}  // namespace GenApi
