#include "runtime/evaluation.h"

#include <string>

#include "GenICam/exceptions.h"
#include "runtime/engine.h"
#include "runtime/node.h"

namespace kiv::genapi {

namespace {

constexpr size_t longestChain = 256;
constexpr uint32_t mostWork = 1'000'000;

[[noreturn]] void refuse_cycle(Node& node, const std::vector<Node*>& chain) {
    std::string text = "The description of the node refers to itself:";
    size_t start = chain.size();
    while (start > 0 && chain[start - 1] != &node) --start;
    for (size_t i = start > 0 ? start - 1 : 0; i < chain.size(); ++i) text.append(" ").append(chain[i]->Name()).append(" ->");
    throw GenICam::LogicalErrorException(text.append(" ").append(node.Name()).append("."), node.Place());
}

}  // namespace

Evaluation::Evaluation(Node& node, Question question) : node_(node), question_(question) {
    auto& evaluator = node.Context().evaluator;
    node.Context().Ask(node.Index(), facets_of(question));
    if (evaluator.chain.empty()) {
        ++evaluator.epoch;
        evaluator.work = 0;
    }
    if (node.evaluating_ & static_cast<uint8_t>(question)) refuse_cycle(node, evaluator.chain);
    if (evaluator.chain.size() >= longestChain)
        throw GenICam::LogicalErrorException("The description of the node is nested too deeply.", node.Place());
    if (++evaluator.work > mostWork)
        throw GenICam::LogicalErrorException("The description of the node takes too much work.", node.Place());
    evaluator.chain.push_back(&node);
    node.evaluating_ |= static_cast<uint8_t>(question);
}

Evaluation::~Evaluation() {
    node_.evaluating_ &= static_cast<uint8_t>(~static_cast<uint8_t>(question_));
    node_.Context().evaluator.chain.pop_back();
}

}  // namespace kiv::genapi
