#pragma once

#include <iosfwd>

#include "GenApi/types.h"

namespace GenApi {

class INodeMap;
class IValue;

/// Feature names with their values as texts: what a persistence file holds.
class KIV_GENICAM_API CFeatureBag {
public:
    CFeatureBag();
    CFeatureBag(const CFeatureBag&);
    CFeatureBag& operator=(const CFeatureBag&);
    ~CFeatureBag();

    /// Takes all streamable features that are readable and writable, each selected one for every combination of its selectors.
    /// The number of entries that were stored; `maxEntries` of -1 sets no limit.
    int64_t StoreToBag(INodeMap* map, int maxEntries = -1);
    /// True when every entry could be set (and, with `verify`, reads back as it was set). Without `errors` a failure throws
    /// RuntimeException.
    bool LoadFromBag(INodeMap* map, bool verify = true, gcstring_vector* errors = nullptr);

    void PersistFeature(IValue& feature);
    void SetInfo(const gcstring& info);
    const gcstring& GetInfo() const { return name_; }
    const gcstring_vector& GetNames() const { return names_; }
    const gcstring_vector& GetValues() const { return values_; }

    friend KIV_GENICAM_API bool operator==(const CFeatureBag& a, const CFeatureBag& b);
    friend KIV_GENICAM_API std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);
    friend KIV_GENICAM_API std::istream& operator>>(std::istream& stream, CFeatureBag& bag);

private:
    gcstring name_;
    gcstring_vector names_;
    gcstring_vector values_;
};

}  // namespace GenApi
