#pragma once

#include <memory>

#include "GenApi/i_category.h"

namespace GenApi {

/// The selectors of one feature as a digit counter: every combination of their values in turn, and the way back to how they
/// stood.
class KIV_GENICAM_API CSelectorSet {
public:
    explicit CSelectorSet(IBase* feature);
    CSelectorSet(const CSelectorSet&);
    CSelectorSet& operator=(const CSelectorSet&);
    ~CSelectorSet();

    bool IsEmpty() const;
    void GetSelectorList(FeatureList_t& selectors, bool incremental = false) const;
    /// False when there is no combination.
    bool SetFirst();
    bool SetNext(bool tick = true);
    void Restore();
    gcstring ToString() const;

private:
    struct Digits;
    std::shared_ptr<Digits> digits_;
};

}  // namespace GenApi
