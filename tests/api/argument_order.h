/// In which order an exported function finds fault with its arguments.
///
/// ExpectOrder("H0 P1 P2", "K_Node_GetName", K_Node_GetName, K_ST_SUCCESS, node, text, &size, 0) calls the function with every
/// combination of the named arguments being null and expects the status of the first missing one in that order, and the given
/// status when none is missing. A letter without a number is a fault of the set-up, which is always there.
#pragma once

#include <optional>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "support/scripted_factory.h"

namespace kiv_test {

class ArgumentOrder : public ScriptedFactory {
protected:
    /// For functions that must not succeed here, because that would close or open something.
    static constexpr std::optional<K_STATUS_CODES> never = std::nullopt;

    template <class... Parameters, class... Given>
    void ExpectOrder(const char* order, const char* name, K_STATUS_CODES (*function)(Parameters...),
                     std::optional<K_STATUS_CODES> complete, Given... given) {
        const auto faults = Parsed(order);
        const std::tuple<Parameters...> whole(given...);
        for (unsigned missing = 0; missing < 1u << faults.size(); ++missing) {
            auto arguments = whole;
            auto expected = complete;
            for (auto i = faults.size(); i-- > 0;) {
                const bool is_standing = faults[i].argument < 0;
                if (!is_standing && (missing >> i & 1) == 0) continue;
                expected = faults[i].status;
                if (!is_standing) Replace(arguments, faults[i].argument, nullptr);
            }
            if (!expected) continue;
            size = sizeof text;
            EXPECT_STATUS(*expected, std::apply(function, arguments)) << name << ", null: " << Names(faults, missing);
        }
        for (auto& fault : faults) {
            if (fault.status != K_ST_INVALID_HANDLE || fault.argument < 0) continue;
            auto arguments = whole;
            if (!Replace(arguments, fault.argument, this)) continue;
            EXPECT_STATUS(K_ST_INVALID_HANDLE, std::apply(function, arguments)) << name << ", another kind of handle";
        }
    }

    char text[512] = "";
    std::uint32_t size = sizeof text;

private:
    struct Fault {
        K_STATUS_CODES status;
        int argument;  ///< -1: of the set-up
    };

    static std::vector<Fault> Parsed(const char* order) {
        std::vector<Fault> faults;
        std::istringstream words(order);
        for (std::string word; words >> word;) {
            const auto status = word[0] == 'H'   ? K_ST_INVALID_HANDLE
                                : word[0] == 'P' ? K_ST_INVALID_PARAMETER
                                : word[0] == 'I' ? K_ST_INVALID_ID
                                : word[0] == 'B' ? K_ST_INVALID_BUFFER_SIZE
                                : word[0] == 'D' ? K_ST_NO_DATA
                                                 : K_ST_NOT_IMPLEMENTED;
            faults.push_back({status, word.size() > 1 ? word[1] - '0' : -1});
        }
        return faults;
    }

    static std::string Names(const std::vector<Fault>& faults, unsigned missing) {
        std::string names;
        for (std::size_t i = 0; i < faults.size(); ++i)
            if (missing >> i & 1) names += std::to_string(faults[i].argument) + " ";
        return names;
    }

    /// Null for any pointer; with a stand-in only handles of the library's own objects: a live one of another kind.
    template <class Tuple>
    bool Replace(Tuple& arguments, int wanted, const void* stand_in) {
        return [&]<std::size_t... i>(std::index_sequence<i...>) {
            return (... || (static_cast<int>(i) == wanted && Put(std::get<i>(arguments), stand_in)));
        }
        (std::make_index_sequence<std::tuple_size_v<Tuple>>());
    }
    template <class Argument>
    bool Put(Argument& argument, const void* stand_in) {
        if constexpr (std::is_pointer_v<Argument>) {
            if (!stand_in) return argument = nullptr, true;
            if constexpr (std::is_same_v<Argument, FACTORY_HANDLE>)
                return camera ? argument = reinterpret_cast<Argument>(camera), true : false;
            else if constexpr (std::is_same_v<Argument, CAM_HANDLE> || std::is_same_v<Argument, TRANSPORT_LAYER_HANDLE> ||
                               std::is_same_v<Argument, INTERFACE_HANDLE> || std::is_same_v<Argument, THRD_HANDLE>)
                return argument = reinterpret_cast<Argument>(factory), true;
        }
        return false;
    }
};

#define EXPECT_ORDER(order, function, ...) ExpectOrder(order, #function, function, __VA_ARGS__)

}  // namespace kiv_test
