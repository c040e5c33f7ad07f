/// One object of the configuration file: reads what may stand in it, and refuses the rest with words that name its place.
#pragma once

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kivsim {

using nlohmann::json;

[[noreturn]] inline void refuse(const std::string& what) { throw std::runtime_error(what); }

/// A JSON object that knows its place in the file, for messages, and what may stand in it.
class Section {
public:
    Section(const json& object, std::string place, const std::vector<std::string_view>& keys)
        : object_(object), place_(std::move(place)) {
        if (!object.is_object()) refuse(place_ + " is no object");
        for (const auto& [key, value] : object.items())
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) refuse(place_ + " has an unknown key \"" + key + "\"");
    }

    template <typename T>
    void Get(const char* key, T& value) const {
        const auto found = object_.find(key);
        if (found == object_.end()) return;
        try {
            if constexpr (std::is_same_v<T, std::string>)
                value = found->template get_ref<const std::string&>();
            else if (std::is_same_v<T, bool> ? !found->is_boolean() : !found->is_number())
                refuse(place_ + "." + key + " has the wrong type");
            else
                value = found->template get<T>();
        } catch (const json::exception&) {
            refuse(place_ + "." + key + " has the wrong type");
        }
    }
    uint32_t Unsigned(const char* key, uint32_t value) const {
        const auto found = object_.find(key);
        if (found == object_.end()) return value;
        if (!found->is_number_unsigned() || found->get<uint64_t>() > UINT32_MAX)
            refuse(place_ + "." + key + " is no whole number");
        return found->get<uint32_t>();
    }
    const std::string& Place() const { return place_; }
    /// Null when the key is not there.
    const json* Find(const char* key) const {
        const auto found = object_.find(key);
        return found == object_.end() ? nullptr : &*found;
    }
    const json& List(const char* key) const {
        static const json none = json::array();
        const auto found = object_.find(key);
        if (found == object_.end()) return none;
        if (!found->is_array()) refuse(place_ + "." + key + " is no list");
        return *found;
    }

private:
    const json& object_;
    std::string place_;
};

}  // namespace kivsim
