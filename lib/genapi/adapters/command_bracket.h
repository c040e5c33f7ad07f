// Two commands of a device around a piece of work, where the device has them: it is told that the work begins, and, whatever
// happens in between, that it has ended.
#pragma once

#include <string_view>

#include "GenApi/i_node_map.h"
#include "GenApi/i_numeric.h"

namespace kiv::genapi {

class CommandBracket {
public:
    /// Executes the command `begin` if the map has it and it can be executed.
    CommandBracket(GenApi::INodeMap& map, std::string_view begin, std::string_view end);
    ~CommandBracket();
    CommandBracket(const CommandBracket&) = delete;
    CommandBracket& operator=(const CommandBracket&) = delete;

    bool HasBegun() const { return end_ != nullptr; }
    /// Executes the command `end` if the other one was. Throws what the device throws; the destructor does not.
    void End();

private:
    GenApi::ICommand* end_ = nullptr;
};

}  // namespace kiv::genapi
