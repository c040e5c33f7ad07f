#pragma once

#include <memory>

#include "GenApi/i_category.h"

namespace GenApi {

/// The selectors of one feature, and the selectors of those, as a counter with a digit each: every combination of their values
/// in turn, and the way back to how they stood. A selector comes before what it selects, so that the values of the later ones are
/// those of the moment. A selector that cannot be read and written now keeps its value.
///
///     for (bool more = set.SetFirst(); more; more = set.SetNext()) ...
///     set.Restore();
///
/// Setting writes to the device. An integer selector with more than 65536 values keeps its value, too.
class KIV_GENICAM_API CSelectorSet {
public:
    explicit CSelectorSet(IBase* feature);
    CSelectorSet(const CSelectorSet&);
    CSelectorSet& operator=(const CSelectorSet&);
    ~CSelectorSet();

    /// Without selectors there is one combination, in which nothing is set.
    bool IsEmpty() const;
    /// In the order of their setting; `incremental` gives only those that the last SetFirst() or SetNext() set.
    void GetSelectorList(FeatureList_t& selectors, bool incremental = false) const;
    /// False when there is no combination.
    bool SetFirst();
    /// False after the last combination.
    bool SetNext();
    /// Tries all selectors, then throws what the first failure threw.
    void Restore();
    /// "GainSelector=Red,Index=3": how the selectors stand now.
    gcstring ToString() const;

private:
    struct Digits;
    std::shared_ptr<Digits> digits_;
};

}  // namespace GenApi
