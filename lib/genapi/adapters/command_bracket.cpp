#include "adapters/command_bracket.h"

#include <utility>

#include "GenApi/i_node.h"

namespace kiv::genapi {

namespace {

GenApi::ICommand* command_of(GenApi::INodeMap& map, std::string_view name) {
    GenApi::INode* node = map.GetNode(name);
    return node ? static_cast<GenApi::ICommand*>(node->AsInterface(GenApi::intfICommand)) : nullptr;
}

}  // namespace

CommandBracket::CommandBracket(GenApi::INodeMap& map, std::string_view begin, std::string_view end) {
    GenApi::ICommand* beginning = command_of(map, begin);
    GenApi::ICommand* ending = command_of(map, end);
    if (!beginning || !ending || !IsWritable(*beginning)) return;
    beginning->Execute();
    end_ = ending;
}

CommandBracket::~CommandBracket() {
    try {
        End();
    } catch (...) {  // another failure is on its way already
    }
}

void CommandBracket::End() {
    if (GenApi::ICommand* ending = std::exchange(end_, nullptr)) ending->Execute();
}

}  // namespace kiv::genapi
