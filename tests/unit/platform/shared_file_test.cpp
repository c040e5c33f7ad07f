#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/mapped_file.h>
#include <kiv/platform/paths.h>

#include <atomic>

#include "child_process.h"
#include "temporary_folder.h"

using namespace kiv::platform;
using kiv::test::ChildProcess;
using kiv::test::TemporaryFolder;

namespace {

TEST(MappedFile, ProcessesSeeTheSameBytes) {
    const TemporaryFolder folder;
    const std::string path = folder / "shared";
    MappedFile file = MappedFile::OpenOrCreate(path, 4096);
    auto& counter = *reinterpret_cast<std::atomic<int>*>(file.Data());
    EXPECT_EQ(0, counter.load()) << "new bytes are zero";
    ChildProcess first({"count-up", path, "20000"}), second({"count-up", path, "20000"});
    EXPECT_EQ(0, first.Finish());
    EXPECT_EQ(0, second.Finish());
    EXPECT_EQ(40000, counter.load());
    const MappedFile moved = std::move(file);
    EXPECT_EQ(4096u, moved.Size());
    EXPECT_EQ(40000, *reinterpret_cast<const int*>(MappedFile::OpenOrCreate(path, 4096).Data())) << "opening again keeps them";
}

TEST(MappedFile, RefusesOtherSizesAndWhatIsNotThere) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("three", "abc");
    EXPECT_EQ(3u, MappedFile::Open(path).Size());
    EXPECT_THROW(MappedFile::OpenOrCreate(path, 4), FileError);
    EXPECT_EQ("abc", read_file(path, 10)) << "refused means untouched";
    EXPECT_THROW(MappedFile::Open(folder / "missing"), FileError);
    EXPECT_FALSE(path_exists(folder / "missing"));
    EXPECT_THROW(MappedFile::Open(folder.Write("empty", "")), FileError);
    EXPECT_THROW(MappedFile::OpenOrCreate(folder / "none/x", 8), FileError);
}

TEST(FileLock, HasOneOwnerAndIsGivenBackByDeath) {
    const TemporaryFolder folder;
    const std::string path = folder / "lock";
    {
        const auto own = FileLock::TryAcquire(path);
        ASSERT_TRUE(own);
        EXPECT_FALSE(FileLock::TryAcquire(path)) << "also within one process";
        EXPECT_EQ(3, ChildProcess({"hold-lock", path}).Finish());
    }
    ChildProcess other({"hold-lock", path});
    ASSERT_EQ("ready", other.ReadLine());
    EXPECT_FALSE(FileLock::TryAcquire(path));
    other.Kill();
    auto again = FileLock::TryAcquire(path);
    ASSERT_TRUE(again);
    const FileLock moved = std::move(*again);
    again.reset();
    EXPECT_FALSE(FileLock::TryAcquire(path)) << "the lock moved along";
    EXPECT_THROW(FileLock::TryAcquire(folder / "none/lock"), FileError);
}

}  // namespace
