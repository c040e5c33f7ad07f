#pragma once

#include "GenApi/i_value.h"
#include "GenApi/node_vector.h"

namespace GenApi {

/// A folder of the feature tree.
class KIV_GENICAM_API ICategory : public IValue {
public:
    /// What the category itself lists, in that order and unfiltered; entries without a value are left out.
    virtual void GetFeatures(FeatureList_t& features) const = 0;
};

/// Offered by every node: which features show another value for each value of this one, and the other way round.
class KIV_GENICAM_API ISelector : public IBase {
public:
    virtual bool IsSelector() const = 0;
    virtual void GetSelectedFeatures(FeatureList_t& features) const = 0;
    virtual void GetSelectingFeatures(FeatureList_t& features) const = 0;
};

}  // namespace GenApi
