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

    /// Replaces the content by the map's streamable features that are readable and writable, each selected one for every
    /// combination of its selectors, with the selectors' values in front. The selectors are put back, and their own values come
    /// last. Storing stops after `maxEntries` entries; -1 sets no limit. The number of entries that were stored.
    int64_t StoreToBag(INodeMap* map, int maxEntries = -1);
    /// Sets every entry in turn and goes on after those that fail; `verify` checks ranges and then reads back and compares texts.
    /// A device that announces register streaming is told when it begins and ends, and checks ranges itself. True when all went
    /// well. `errors` receives a line for each failure; without it failures throw RuntimeException at the end.
    bool LoadFromBag(INodeMap* map, bool verify = true, gcstring_vector* errors = nullptr);

    /// Appends the feature with its present value.
    void PersistFeature(IValue& feature);
    /// The name that the third line of a file shows.
    void SetInfo(const gcstring& info);
    const gcstring& GetInfo() const { return name_; }
    const gcstring_vector& GetNames() const { return names_; }
    const gcstring_vector& GetValues() const { return values_; }

    /// Whether both hold the same entries; the bag's name does not count.
    friend KIV_GENICAM_API bool operator==(const CFeatureBag& a, const CFeatureBag& b);
    /// A persistence file: three lines that begin with '#', then a line "name<TAB>value" for each entry.
    friend KIV_GENICAM_API std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);
    /// Replaces the entries, keeps the bag's name. Throws RuntimeException when the stream is at its end or is no persistence
    /// file; what follows a faulty line is not read.
    friend KIV_GENICAM_API std::istream& operator>>(std::istream& stream, CFeatureBag& bag);

private:
    gcstring name_;
    gcstring_vector names_;
    gcstring_vector values_;
};

}  // namespace GenApi
