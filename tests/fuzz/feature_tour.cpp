#include "feature_tour.h"

#include <algorithm>
#include <string>
#include <vector>

#include "GenApi/GenApi.h"
#include "fuzz_target.h"

namespace kiv::fuzz {

using namespace GenApi;

namespace {

template <class Body>
bool try_to(Body body) {
    try {
        body();
        return true;
    } catch (const GenICam::GenericException&) {
        return false;
    }
}

constexpr int64_t integers[] = {0, 1, 2, -1, 7, 255, 65536, INT64_MAX, INT64_MIN};
constexpr double reals[] = {0.0, 1.0, -1.0, 0.5, 1e300, -1e-300, 4294967296.0};
constexpr const char* texts[] = {"", "0", "1", "true", "One", "Busy", "-5", "0x1f", "1e400", "nan", "192.168.0.1", "0102"};

template <class T, size_t count>
T any(const T (&values)[count], Dice& dice) {
    return values[dice.Below(count)];
}

void visit(IInteger& node, Dice& dice) {
    try_to([&] { node.GetValue(); });
    try_to([&] { node.GetValue(true, true); });
    try_to([&] { node.GetMin(); });
    try_to([&] { node.GetMax(); });
    try_to([&] { node.GetIncMode(); });
    try_to([&] { require(node.GetInc() >= 1, "an increment below 1"); });
    try_to([&] { node.GetListOfValidValues(); });
    try_to([&] { node.GetRepresentation(); });
    try_to([&] { node.GetUnit(); });
    node.GetFloatAlias();
    try_to([&] { node.SetValue(any(integers, dice), dice.Below(2)); });
    try_to([&] { node.SetValue(node.GetMin()); });
}

void visit(IFloat& node, Dice& dice) {
    try_to([&] { node.GetValue(); });
    try_to([&] { node.GetValue(true, true); });
    try_to([&] { node.GetMin(); });
    try_to([&] { node.GetMax(); });
    try_to([&] { node.GetIncMode(); });
    try_to([&] { node.HasInc() ? node.GetInc() : 0.0; });
    try_to([&] { node.GetListOfValidValues(); });
    try_to([&] { node.GetRepresentation(); });
    try_to([&] { node.GetUnit(); });
    try_to([&] { node.GetDisplayNotation(); });
    try_to([&] { node.GetDisplayPrecision(); });
    node.GetIntAlias();
    node.GetEnumAlias();
    try_to([&] { node.SetValue(any(reals, dice), dice.Below(2)); });
    try_to([&] { node.SetValue(node.GetMax()); });
}

void visit(IBoolean& node, Dice& dice) {
    try_to([&] { node.GetValue(true, dice.Below(2)); });
    try_to([&] { node.SetValue(dice.Below(2)); });
}

void visit(ICommand& node, Dice& dice) {
    try_to([&] { node.Execute(dice.Below(2)); });
    try_to([&] { node.IsDone(); });
}

void visit(IString& node, Dice& dice) {
    try_to([&] { node.GetValue(false, dice.Below(2)); });
    try_to([&] { node.GetMaxLength(); });
    try_to([&] { node.SetValue(any(texts, dice)); });
}

void visit(IEnumeration& node, Dice& dice) {
    NodeList_t entries;
    node.GetEntries(entries);
    StringList_t symbolics;
    try_to([&] { node.GetSymbolics(symbolics); });
    for (const auto& symbolic : symbolics) require(node.GetEntryByName(symbolic), "an entry is not found by its name");
    try_to([&] { node.GetIntValue(true, dice.Below(2)); });
    try_to([&] { node.GetCurrentEntry(); });
    try_to([&] { node.GetEntry(any(integers, dice)); });
    try_to([&] { node.SetIntValue(any(integers, dice)); });
}

void visit(IEnumEntry& node, Dice&) {
    node.GetValue();
    node.GetNumericValue();
    node.GetSymbolic();
    node.IsSelfClearing();
}

void visit(IRegister& node, Dice& dice) {
    constexpr int64_t largest = 300;
    int64_t length = dice.Below(9);
    if (dice.Below(4)) try_to([&] { length = node.GetLength(); });
    try_to([&] { node.GetAddress(); });
    std::vector<uint8_t> bytes(static_cast<size_t>(std::clamp<int64_t>(length, 1, largest)));
    const auto size = static_cast<int64_t>(bytes.size());
    try_to([&] { node.Get(bytes.data(), size, false, dice.Below(2)); });
    try_to([&] { node.Set(bytes.data(), size); });
}

void visit(ICategory& node, Dice&) {
    FeatureList_t features;
    node.GetFeatures(features);
}

void visit(IPort& node, Dice& dice) {
    uint8_t bytes[8] = {};
    try_to([&] { node.Read(bytes, any(integers, dice), static_cast<int64_t>(dice.Below(9))); });
    try_to([&] { node.Write(bytes, any(integers, dice), static_cast<int64_t>(dice.Below(9))); });
}

void visit(IValue& node, Dice& dice) {
    gcstring text;
    const bool isText = try_to([&] { text = node.ToString(dice.Below(2), dice.Below(2)); });
    node.IsValueCacheValid();
    if (isText && dice.Below(2)) try_to([&] { node.FromString(text, dice.Below(2)); });
    if (dice.Below(4) == 0) try_to([&] { node.FromString(any(texts, dice)); });
}

void visit(ISelector& node, Dice&) {
    FeatureList_t features;
    node.IsSelector();
    node.GetSelectedFeatures(features);
    node.GetSelectingFeatures(features);
}

void visit(INode& node, Dice& dice) {
    node.GetName(true), node.GetNameSpace(), node.GetVisibility(), node.GetToolTip(), node.GetDisplayName();
    node.IsCachable(), node.IsAccessModeCacheable(), node.GetPollingTime(), node.IsStreamable(), node.IsDeprecated();
    if (dice.Below(8) == 0) node.GetDocuURL();
    node.GetAlias(), node.GetCastAlias();
    require(node.GetAccessMode() <= RW, "an access mode that is none");
    if (dice.Below(4) == 0) {
        gcstring_vector names;
        node.GetPropertyNames(names);
        gcstring value, attribute;
        for (const auto& name : names) node.GetProperty(name, value, attribute);
    }
    NodeList_t list;
    if (dice.Below(2)) node.GetChildren(list, static_cast<ELinkType>(dice.Below(6)));
    if (dice.Below(8) == 0) node.InvalidateNode();
    if (dice.Below(32) == 0) node.ImposeAccessMode(dice.Below(2) ? RO : RW);
    if (dice.Below(32) == 0) node.ImposeVisibility(Expert);
}

template <class... Interfaces>
void visit_each(INode& node, Dice& dice) {
    const auto one = [&](auto* face) {
        if (face) visit(*face, dice);
    };
    (one(dynamic_cast<Interfaces*>(&node)), ...);
}

void use_bag(INodeMap& map, Dice& dice) {
    CFeatureBag bag;
    try_to([&] { bag.StoreToBag(&map, 50); });
    gcstring_vector errors;
    try_to([&] { bag.LoadFromBag(&map, dice.Below(2), &errors); });
}

/// What a node shows, or what it says instead.
std::string shown(IValue& value, bool ignoreCache) {
    try {
        return value.ToString(false, ignoreCache).str();
    } catch (const GenICam::GenericException& error) {
        return std::string("!") + error.GetDescription();
    }
}

}  // namespace

void tour(INodeMap& map, Dice& dice, const std::function<bool()>& isEnough) {
    NodeList_t nodes;
    map.GetNodes(nodes);
    for (auto* node : nodes) Register(node, [](INode* changed) { changed->GetAccessMode(); });
    for (int round = 0; round < 2; ++round) {
        for (auto* node : nodes) {
            if (isEnough()) return;
            visit_each<INode, ISelector, IInteger, IFloat, IBoolean, ICommand, IString, IEnumeration, IEnumEntry, IRegister,
                       ICategory, IPort, IValue>(*node, dice);
        }
        try_to([&] { map.Poll(static_cast<int64_t>(dice.Below(200))); });
        if (round == 0) map.InvalidateNodes();
    }
    map.ParseSwissKnifes();
    if (nodes.size() <= 100 && dice.Below(4) == 0 && !isEnough()) use_bag(map, dice);
}

void require_true_caches(INodeMap& map, Dice& dice, const std::function<bool()>& isEnough) {
    NodeList_t nodes;
    map.GetNodes(nodes);
    std::vector<IValue*> values;
    for (auto* node : nodes)
        if (auto* value = dynamic_cast<IValue*>(node)) values.push_back(value);
    constexpr int writes = 3;
    for (int i = 0; i < writes && !values.empty(); ++i) {
        for (auto* value : values) {
            if (isEnough()) return;
            const auto cached = shown(*value, false);
            const auto real = shown(*value, true);
            if (cached == real) continue;
            std::fprintf(stderr, "%s: cached \"%s\", in the device \"%s\"\n", value->GetNode()->GetName().c_str(), cached.c_str(),
                         real.c_str());
            require(false, "a cached value is not that of the device");
        }
        visit_each<IInteger, IFloat, IBoolean, ICommand, IString, IEnumeration, IRegister>(
            *values[dice.Below(values.size())]->GetNode(), dice);
    }
}

}  // namespace kiv::fuzz
