#pragma once

#include <string_view>

#include "GenApi/i_value.h"
#include "GenApi/node_vector.h"

namespace GenApi {

/// One choice of an enumeration.
class KIV_GENICAM_API IEnumEntry : public IValue {
public:
    virtual int64_t GetValue() = 0;
    /// The name that the entry has inside its enumeration (the node's own name is longer).
    virtual gcstring GetSymbolic() const = 0;
    /// The number that a floating-point view of the enumeration shows.
    virtual double GetNumericValue() = 0;
    virtual bool IsSelfClearing() = 0;
};

class KIV_GENICAM_API IEnumeration : public IValue {
public:
    /// The symbolic names of the entries that are available now.
    virtual void GetSymbolics(StringList_t& symbolics) = 0;
    /// All entries in the description's order, available or not.
    virtual void GetEntries(NodeList_t& entries) = 0;
    /// Throws InvalidArgumentException when no entry has the value.
    virtual void SetIntValue(int64_t value, bool verify = true) = 0;
    /// The number that is stored, whether an entry has it or not.
    virtual int64_t GetIntValue(bool verify = false, bool ignoreCache = false) = 0;
    /// Null when there is none of the name; symbolic names are compared exactly.
    virtual IEnumEntry* GetEntryByName(const gcstring& symbolic) = 0;
    virtual IEnumEntry* GetEntry(int64_t value) = 0;
    /// Null when no entry has the current value.
    virtual IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) = 0;
    /// The first entry whose display name is exactly this text, available or not; null when there is none.
    virtual IEnumEntry* GetEntryByDisplayName(std::string_view shown) = 0;

    IEnumeration& operator=(const gcstring& symbolic) { return FromString(symbolic), *this; }
    gcstring operator*() { return ToString(); }
};

}  // namespace GenApi
