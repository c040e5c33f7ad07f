/// The producers that the registry file lists, and where their files are.
#pragma once

#include <Kiv_Registry.h>
#include <kiv/types.h>

#include <cstdint>
#include <string>

namespace kiv {

/// The registry file, open. Reading it never binds anything.
class ProducerRegistry {
public:
    /// What the registry says about one producer.
    struct Element {
        std::string key;   ///< names the producer in camera identifiers
        std::string path;  ///< its file, as configured
        bool enabled = true;
        bool flag = false;
    };

    /// A file that is no registry gives an object without a list: Status() says why.
    explicit ProducerRegistry(const std::string& path);
    ~ProducerRegistry();
    ProducerRegistry(const ProducerRegistry&) = delete;
    ProducerRegistry& operator=(const ProducerRegistry&) = delete;

    K_STATUS_CODES Status() const { return status_; }
    /// Why, for people.
    const std::string& Problem() const { return problem_; }
    bool HasList() const { return list_ != nullptr; }
    std::uint32_t Count() const { return count_; }
    K_STATUS_CODES Read(std::uint32_t index, Element& element) const;

private:
    K_STATUS_CODES Datum(const std::string& name, std::int32_t key, std::string& text) const;

    REGISTRY_HANDLE registry_ = nullptr;
    ELEMENT_LIST_HANDLE list_ = nullptr;
    std::uint32_t count_ = 0;
    K_STATUS_CODES status_ = K_ST_SUCCESS;
    std::string problem_;
};

/// The producer's file: the path itself when it exists, else the first match along GENICAM_GENTL64_PATH, else the path unchanged.
std::string find_producer_file(const std::string& configured);

}  // namespace kiv
