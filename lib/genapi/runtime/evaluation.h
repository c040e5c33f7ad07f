/// Working out the answer to a question about a node: its value, its access mode, its limits.
///
/// Descriptions may define things in circles, in chains of any length, and as trees whose leaves are the same few nodes. So each
/// step is announced here, which ends what would not end by itself: a question that comes back to itself while it is being
/// answered, a chain that is too long, an amount of work that no sensible description needs.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/dependency_graph.h"

namespace kiv::genapi {

class Node;
struct Engine;

/// The first three are the facets of the same name.
enum class Question : uint8_t { Value = facet::value, Mode = facet::mode, Limits = facet::limits, Write = 8, Freshness = 16 };
constexpr Facets facets_of(Question question) {
    return static_cast<Facets>(question) & (facet::value | facet::mode | facet::limits);
}

/// The state of what is being evaluated in one map; guarded by the map's lock.
struct Evaluator {
    uint64_t epoch = 1;    ///< of the outermost question; what a register delivered in this one is not asked for twice
    uint32_t work = 0;     ///< steps since the outermost question
    bool tainted = false;  ///< something went into the answer that must not be kept
    bool bypass = false;   ///< what is kept is not to be used
    uint32_t keepers = 0;  ///< answers being worked out that may be kept
    std::vector<Node*> chain;
};

/// One step. The constructor throws LogicalErrorException when it leads nowhere. Value, mode and limits count as asked for.
class Evaluation {
public:
    Evaluation(Node& node, Question question);
    ~Evaluation();
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;

private:
    Node& node_;
    Question question_;
};

/// Finds out whether the answer that is worked out in its scope may be kept.
class Taint {
public:
    explicit Taint(Evaluator& evaluator) : evaluator_(evaluator), before_(evaluator.tainted) {
        evaluator.tainted = false;
        ++evaluator.keepers;
    }
    ~Taint() {
        evaluator_.tainted |= before_;
        --evaluator_.keepers;
    }
    Taint(const Taint&) = delete;
    Taint& operator=(const Taint&) = delete;
    bool IsClean() const { return !evaluator_.tainted; }

private:
    Evaluator& evaluator_;
    bool before_;
};

/// While it lives, nothing that is kept is used.
class Bypass {
public:
    Bypass(Evaluator& evaluator, bool wanted) : evaluator_(evaluator), before_(evaluator.bypass) { evaluator.bypass |= wanted; }
    ~Bypass() { evaluator_.bypass = before_; }
    Bypass(const Bypass&) = delete;
    Bypass& operator=(const Bypass&) = delete;

private:
    Evaluator& evaluator_;
    bool before_;
};

}  // namespace kiv::genapi
