/// In what systems differ and tests may not. posix/ and win32/ keep the same contract.
#pragma once

#include <string>
#include <vector>

namespace kiv_test {

/// How the system's messages say that there is no such file, and no library of that name.
std::string no_such_file();
std::string no_such_library();

/// Makes the file or library known under a second name too: a link where users may make some, a copy elsewhere.
void give_second_name(const std::string& file, const std::string& name);

/// What stands between the folders of a list, beside ";".
extern const std::string list_separator;

/// What file names of libraries end with.
extern const char* const library_suffix;

/// The names that a library shows to whoever loads it, sorted.
std::vector<std::string> exported_names(const std::string& library);

/// A file of which nothing can be read, and whose readers wait until it is let go.
class BlockingFile {
public:
    explicit BlockingFile(const std::string& folder);
    ~BlockingFile();
    BlockingFile(const BlockingFile&) = delete;
    BlockingFile& operator=(const BlockingFile&) = delete;
    const std::string& Path() const { return path_; }
    void LetGo();

private:
    std::string path_;
    void* handle_ = nullptr;
};

/// "/a/b" as the path of a "file:" URL.
std::string url_path(const std::string& path);

/// The variable that says in which folder a user's caches are.
extern const char* const cache_variable;

}  // namespace kiv_test
