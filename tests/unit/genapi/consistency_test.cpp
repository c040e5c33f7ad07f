// Whether what is kept is ever untrue, and whether everybody is told: random descriptions and random use, beside a map that keeps
// nothing.
#include <algorithm>
#include <optional>
#include <random>
#include <set>

#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    int Upto(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
    bool Chance(int percent) { return Upto(100) < percent; }
    template <class List>
    const auto& OneOf(const List& list) {
        return list[static_cast<size_t>(Upto(static_cast<int>(std::size(list))))];
    }

private:
    std::mt19937 engine_;
};

/// A description in which everything may depend on everything before it, and sometimes on what comes behind it.
struct RandomDescription {
    explicit RandomDescription(Dice& dice) {
        for (int i = 0; i < 60; ++i) names.push_back("N" + std::to_string(i));
        std::string switched =
            "<IntReg Name=\"Switch\"><Address>0</Address><Length>1</Length><AccessMode>RW</AccessMode>"
            "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>";
        for (size_t i = 0; i < names.size(); ++i) nodes += Node(dice, i);
        nodes += switched;
        names.push_back("Switch");
    }

    std::string Other(Dice& dice, size_t index) {
        if (index == 0 || dice.Chance(3)) return dice.OneOf(names);  // a circle now and then
        return names[static_cast<size_t>(dice.Upto(static_cast<int>(index)))];
    }
    std::string Reference(Dice& dice, size_t index, const char* tag, int percent) {
        if (!dice.Chance(percent)) return {};
        return "<" + std::string(tag) + ">" + Other(dice, index) + "</" + tag + ">";
    }
    std::string Node(Dice& dice, size_t index) {
        const auto common = Reference(dice, index, "pIsAvailable", 8) + Reference(dice, index, "pIsLocked", 8);
        const auto selected = Reference(dice, names.size(), "pSelected", 6);
        const auto invalidator = Reference(dice, names.size(), "pInvalidator", 8);
        const auto limits =
            Reference(dice, index, "pMin", 15) + Reference(dice, index, "pMax", 30) + Reference(dice, index, "pInc", 4);
        const auto variables = "<pVariable Name=\"A\">" + Other(dice, index) + "</pVariable><pVariable Name=\"B.Max\">" +
                               Other(dice, index) + "</pVariable><pVariable Name=\"C.AccessMode\">" + Other(dice, index) +
                               "</pVariable>";
        const auto open = [&](const char* element) {
            return "<" + std::string(element) + " Name=\"" + names[index] + "\">" + common;
        };
        switch (index < 8 ? 0 : dice.Upto(10)) {
            case 0:
            case 1: {
                const bool isBanked = dice.Chance(30);
                const int address = isBanked ? 0x800 + 2 * dice.Upto(20) : 0x100 + 2 * dice.Upto(40);
                static constexpr const char* caching[] = {"WriteThrough", "WriteThrough", "WriteAround", "NoCache"};
                const auto moved = index > 8 && dice.Chance(30) ? "<pIndex Offset=\"2\">" + Other(dice, index) + "</pIndex>" : "";
                return open("IntReg") + "<Address>" + std::to_string(address) + "</Address>" + moved + "<Length>" +
                       (dice.Chance(20) ? "4" : "2") + "</Length><AccessMode>" + (dice.Chance(90) ? "RW" : "RO") +
                       "</AccessMode><pPort>Device</pPort><Cachable>" + dice.OneOf(caching) + "</Cachable>" + invalidator +
                       // Moved registers may end up in the bank too.
                       "<pInvalidator>Switch</pInvalidator><Endianess>LittleEndian</Endianess>" + selected + "</IntReg>";
            }
            case 2:
                return open("Integer") + invalidator + "<Value>" + std::to_string(dice.Upto(5)) + "</Value>" + limits + selected +
                       "</Integer>";
            case 3:
            case 4:
                return open("Integer") + invalidator + "<pValue>" + Other(dice, index) + "</pValue>" +
                       Reference(dice, index, "pValueCopy", 15) + limits + selected + "</Integer>";
            case 5:
                return open("IntSwissKnife") + invalidator + variables +
                       "<Formula>(A &gt; 2) ? (A + B.Max) : (A * 3 + C.AccessMode)</Formula></IntSwissKnife>";
            case 6:
                return open("IntConverter") + variables +
                       "<FormulaTo>FROM + (A &amp; 3)</FormulaTo><FormulaFrom>TO - (A &amp; 3)" + "</FormulaFrom><pValue>" +
                       Other(dice, index) + "</pValue><Slope>Automatic</Slope></IntConverter>";
            case 7:
                return open("Integer") + "<pIndex>" + Other(dice, index) + "</pIndex><pValueIndexed Index=\"0\">" +
                       Other(dice, index) + "</pValueIndexed><ValueIndexed Index=\"1\">7</ValueIndexed><pValueDefault>" +
                       Other(dice, index) + "</pValueDefault>" + limits + "</Integer>";
            case 8:
                return open("Float") + "<pValue>" + Other(dice, index) + "</pValue>" + Reference(dice, index, "pMax", 20) +
                       "</Float>";
            default:
                return open("Enumeration") + "<EnumEntry Name=\"A\">" + Reference(dice, index, "pIsAvailable", 30) +
                       "<Value>0</Value></EnumEntry><EnumEntry Name=\"B\">" + Reference(dice, index, "pIsAvailable", 60) +
                       "<Value>1</Value></EnumEntry><EnumEntry Name=\"C\"><NumericValue>2</NumericValue>"
                       "<Value>1</Value></EnumEntry><pValue>" +
                       Other(dice, index) + "</pValue>" + selected + "</Enumeration>";
        }
    }

    std::vector<std::string> names;
    std::string nodes;
};

/// A device in which the register at 0 switches between banks of those from 0x800 on.
class BankedMemory : public Memory {
public:
    void Read(void* buffer, int64_t address, int64_t length) override { Memory::Read(buffer, InBank(address), length); }
    void Write(const void* buffer, int64_t address, int64_t length) override { Memory::Write(buffer, InBank(address), length); }

private:
    int64_t InBank(int64_t address) const {
        return address >= 0x800 && address < 0x880 ? address + 0x100 * (bytes[0] & 3) : address;
    }
};

/// What a call answers, or that it fails and how.
template <class Body>
std::string outcome(Body body) {
    try {
        if constexpr (std::is_void_v<decltype(body())>)
            return body(), "done";
        else
            return std::to_string(body());
    } catch (const GenICam::GenericException& error) {
        return typeid(error).name();
    }
}

struct Subject {
    explicit Subject(const std::string& nodes) : map(kiv::genapi::load_node_map(description_of(nodes))) { map->Connect(&memory); }

    std::string Set(const std::string& name, int64_t value, bool verify) {
        auto* node = map->GetNode(name);
        return outcome([&] {
            if (auto* enumeration = dynamic_cast<IEnumeration*>(node)) return enumeration->SetIntValue(value & 1, verify);
            if (auto* number = dynamic_cast<IFloat*>(node)) return number->SetValue(static_cast<double>(value), verify);
            dynamic_cast<IInteger&>(*node).SetValue(value, verify);
        });
    }
    std::string Ask(const std::string& name, int question, bool ignoreCache) {
        auto* node = map->GetNode(name);
        if (question == 0) return outcome([&] { return static_cast<int>(node->GetAccessMode()); });
        if (auto* enumeration = dynamic_cast<IEnumeration*>(node)) {
            if (question < 3) return outcome([&] { return enumeration->GetIntValue(false, ignoreCache); });
            return outcome([&] { return enumeration->GetCurrentEntry() ? enumeration->GetCurrentEntry()->GetValue() : -1; });
        }
        if (auto* number = dynamic_cast<IFloat*>(node))
            return outcome([&] { return question < 3 ? number->GetValue(false, ignoreCache) : number->GetMax(); });
        auto& integer = dynamic_cast<IInteger&>(*node);
        if (question < 3) return outcome([&] { return integer.GetValue(false, ignoreCache); });
        return question == 3 ? outcome([&] { return integer.GetMin(); }) : outcome([&] { return integer.GetMax(); });
    }

    BankedMemory memory;
    std::unique_ptr<INodeMap> map;
};

}  // namespace

TEST(WhatIsKept, IsNeverUntrue) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Dice dice(seed);
        const RandomDescription description(dice);
        Subject subject(description.nodes), forgetful(description.nodes);
        std::vector<CallbackHandleType> handles;
        for (int step = 0; step < 1500; ++step) {
            const auto& name = dice.OneOf(description.names);
            const auto told = dice.Upto(200);
            if (told == 0) handles.push_back(Register(subject.map->GetNode(name), [](INode*) {}));
            if (told == 1 && !handles.empty()) Deregister(handles.back()), handles.pop_back();
            forgetful.map->InvalidateNodes();
            const bool isWrite = dice.Chance(25), flag = dice.Chance(15);
            const auto value = dice.Upto(12);
            const int question = dice.Upto(5);
            const auto got = isWrite ? subject.Set(name, value, !flag) : subject.Ask(name, question, flag);
            const auto expected = isWrite ? forgetful.Set(name, value, !flag) : forgetful.Ask(name, question, false);
            ASSERT_EQ(expected, got) << "seed " << seed << ", step " << step << ", " << (isWrite ? "write " : "question ")
                                     << question << " to " << name << "\n"
                                     << description.nodes;
            ASSERT_EQ(forgetful.memory.bytes, subject.memory.bytes) << "seed " << seed << ", step " << step;
        }
    }
}

TEST(WhoIsTold, DoesNotDependOnWhoElseListens) {
    for (unsigned seed = 100; seed < 120; ++seed) {
        Dice dice(seed);
        const RandomDescription description(dice);
        Subject crowded(description.nodes), sparse(description.nodes);
        std::vector<std::string> toldAll, toldSome;
        for (const auto& name : description.names)
            Register(crowded.map->GetNode(name), [&](INode* node) { toldAll.push_back(node->GetName().str()); });
        std::set<std::string> listeners;
        std::vector<std::pair<std::string, CallbackHandleType>> handles;
        for (int step = 0; step < 600; ++step) {
            const auto& name = dice.OneOf(description.names);
            if (dice.Chance(20) && listeners.insert(name).second) {
                const auto tell = [&](INode* node) { toldSome.push_back(node->GetName().str()); };
                handles.emplace_back(name, Register(sparse.map->GetNode(name), tell));
            } else if (dice.Chance(25) && !handles.empty()) {
                Deregister(handles.front().second);
                listeners.erase(handles.front().first);
                handles.erase(handles.begin());
            }
            toldAll.clear(), toldSome.clear();
            const auto& written = dice.OneOf(description.names);
            const auto value = dice.Upto(12);
            const auto result = crowded.Set(written, value, true);
            ASSERT_EQ(result, sparse.Set(written, value, true));
            std::erase_if(toldAll, [&](const auto& one) { return !listeners.contains(one); });
            ASSERT_EQ(toldAll, toldSome) << "seed " << seed << ", step " << step << ", " << written;
        }
    }
}
