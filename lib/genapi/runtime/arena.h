/// Memory for the many small objects of one node map: taken in large pieces, given back all at once.
#pragma once

#include <memory>
#include <memory_resource>
#include <type_traits>
#include <utility>
#include <vector>

namespace kiv::genapi {

/// Objects live as long as the arena and are destroyed in the reverse order of their making.
class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() {
        for (auto it = owned_.rbegin(); it != owned_.rend(); ++it) it->destroy(it->object);
    }

    /// Room for the bookkeeping of so many objects.
    void Reserve(size_t objects) { owned_.reserve(objects); }

    template <class T, class... Arguments>
    T& Make(Arguments&&... arguments) {
        if (owned_.size() == owned_.capacity()) owned_.reserve(owned_.size() * 2 + 64);  // so that push_back cannot fail
        auto* made =
            std::construct_at(static_cast<T*>(memory_.allocate(sizeof(T), alignof(T))), std::forward<Arguments>(arguments)...);
        if constexpr (!std::is_trivially_destructible_v<T>)
            owned_.push_back({made, [](void* object) { std::destroy_at(static_cast<T*>(object)); }});
        return *made;
    }

private:
    struct Owned {
        void* object;
        void (*destroy)(void*);
    };
    std::pmr::monotonic_buffer_resource memory_{16 * 1024};
    std::vector<Owned> owned_;
};

}  // namespace kiv::genapi
