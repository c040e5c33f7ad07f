#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "GenApi/feature_bag.h"
#include "GenApi/i_category.h"
#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenApi/i_value.h"
#include "GenICam/exceptions.h"
#include "adapters/command_bracket.h"

namespace GenApi {

namespace {

std::string about(const char* doing, const gcstring& name, const std::string& what) {
    return std::string("Error while ") + doing + " node '" + name.str() + "'" + what;
}

std::string joined(const gcstring_vector& lines) {
    std::string text;
    for (const gcstring& line : lines) text += (text.empty() ? "" : "\n") + line.str();
    return text;
}

/// Sets a map to the entries of a bag and notes what goes wrong.
class Loading {
public:
    Loading(INodeMap& map, const gcstring_vector& names, const gcstring_vector& values)
        : map_(map), names_(names), values_(values), isSet_(std::min(names.size(), values.size())) {}

    void WriteAll(bool verify) {
        for (size_t i = 0; i < isSet_.size(); ++i) isSet_[i] = Write(i, verify);
    }

    /// Goes through the entries once more, because what a feature shows depends on the selectors in front of it.
    void VerifyAll() {
        for (size_t i = 0; i < isSet_.size(); ++i)
            if (isSet_[i]) Verify(i);
    }

    void Note(const std::string& error) { errors_.push_back(error); }
    const gcstring_vector& Errors() const { return errors_; }

private:
    IValue* Value(size_t i) const {
        INode* node = map_.GetNode(names_[i]);
        return node ? static_cast<IValue*>(node->AsInterface(intfIValue)) : nullptr;
    }

    bool Write(size_t i, bool verify) {
        IValue* value = Value(i);
        try {
            if (!value) throw std::runtime_error("Node not existing, or without a value.");
            value->FromString(values_[i], verify);
            return true;
        } catch (const std::exception& e) {
            Note(about("writing", names_[i], std::string(": ") + e.what()));
            return false;
        }
    }

    void Verify(size_t i) {
        IValue* value = Value(i);
        auto* selector = dynamic_cast<ISelector*>(value->GetNode());
        try {
            if (selector && selector->IsSelector()) return value->FromString(values_[i]);
            const gcstring found = value->ToString();
            if (!(found == values_[i]))
                Note(about("verifying", names_[i], ". Expected '" + values_[i].str() + "', but found '" + found.str() + "'."));
        } catch (const std::exception& e) {
            Note(about("verifying", names_[i], std::string(": ") + e.what()));
        }
    }

    INodeMap& map_;
    const gcstring_vector& names_;
    const gcstring_vector& values_;
    std::vector<bool> isSet_;
    gcstring_vector errors_;
};

}  // namespace

bool CFeatureBag::LoadFromBag(INodeMap* map, bool verify, gcstring_vector* errors) {
    if (!map) throw GenICam::InvalidArgumentException("A feature bag was given no node map to load into.");
    const AutoLock lock(map->GetLock());
    Loading loading(*map, names_, values_);
    {
        // A device that takes a stream of registers checks them as a whole at its end; in between, limits that depend on features
        // still to come would refuse good values.
        kiv::genapi::CommandBracket streaming(*map, "DeviceRegistersStreamingStart", "DeviceRegistersStreamingEnd");
        loading.WriteAll(verify && !streaming.HasBegun());
        try {
            streaming.End();
        } catch (const std::exception& e) {
            loading.Note(std::string("Error while ending the register streaming: ") + e.what());
        }
    }
    map->InvalidateNodes();
    if (verify) loading.VerifyAll();
    if (loading.Errors().empty()) return true;
    if (!errors) throw GenICam::RuntimeException(joined(loading.Errors()));
    for (const gcstring& error : loading.Errors()) errors->push_back(error);
    return false;
}

}  // namespace GenApi
