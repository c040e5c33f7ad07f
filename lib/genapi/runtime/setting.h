/// A number that a description gives either as it is or as the name of a node that has it.
#pragma once

#include <cstdint>

namespace kiv::genapi {

class Node;

/// Reading another node's value as T. The node's access mode is not looked at.
template <class T>
T read_from(Node& node);
template <>
int64_t read_from<int64_t>(Node& node);
template <>
double read_from<double>(Node& node);

template <class T>
class Setting {
public:
    Setting() = default;
    explicit Setting(T value) : value_(value), state_(State::Immediate) {}
    explicit Setting(Node& node) : node_(&node), state_(State::Reference) {}

    explicit operator bool() const { return state_ != State::Absent; }
    bool IsReference() const { return state_ == State::Reference; }
    Node* Target() const { return state_ == State::Reference ? node_ : nullptr; }
    T operator()() const { return state_ == State::Reference ? read_from<T>(*node_) : value_; }
    /// For comparing two settings, and for what needs no node.
    T Immediate() const { return state_ == State::Immediate ? value_ : T{}; }
    bool operator==(const Setting& other) const {
        return state_ == other.state_ && Target() == other.Target() && Immediate() == other.Immediate();
    }

private:
    enum class State : uint8_t { Absent, Immediate, Reference };
    union {
        T value_{};
        Node* node_;
    };
    State state_ = State::Absent;
};

}  // namespace kiv::genapi
