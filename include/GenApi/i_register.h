#pragma once

#include "GenApi/i_base.h"

namespace GenApi {

/// The bytes of a register as they stand in the device.
///
/// It repeats IValue instead of deriving from it: a node whose value is a number in a register offers both interfaces, and has
/// one IValue.
class KIV_GENICAM_API IRegister : public IBase {
public:
    /// At most GetLength() bytes; what is missing is written as zeros.
    virtual void Set(const uint8_t* buffer, int64_t length, bool verify = true) = 0;
    /// `length` must be at least GetLength().
    virtual void Get(uint8_t* buffer, int64_t length, bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t GetLength() = 0;
    virtual int64_t GetAddress() = 0;

    virtual INode* GetNode() = 0;
    virtual gcstring ToString(bool verify = false, bool ignoreCache = false) = 0;
    virtual void FromString(const gcstring& text, bool verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

}  // namespace GenApi
