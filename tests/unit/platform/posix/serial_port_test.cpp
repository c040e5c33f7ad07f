#include <fcntl.h>
#include <gtest/gtest.h>
#include <kiv/platform/serial_port.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <numeric>
#include <system_error>

#include "../temporary_folder.h"

using namespace kiv::platform;
using namespace std::chrono_literals;

namespace {

/// The far end of a serial line: what it writes the port receives.
class Line : public testing::Test {
protected:
    Line() {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        grantpt(master_);
        unlockpt(master_);
        device_ = ptsname(master_);
        keeper_ = open(device_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Line() override {
        close(keeper_);
        HangUp();
    }
    void HangUp() {
        if (master_ >= 0) close(master_);
        master_ = -1;
    }
    termios Settings() const {
        termios settings{};
        tcgetattr(keeper_, &settings);
        return settings;
    }

    int master_ = -1, keeper_ = -1;
    std::string device_;
};

int error_of(const std::string& device) try {
    SerialPort port(device);
    return 0;
} catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find(device), std::string::npos);
    return error.code().value();
}

TEST_F(Line, EveryByteValuePassesBothWays) {
    SerialPort port(device_);
    std::array<unsigned char, 256> all;
    std::iota(all.begin(), all.end(), static_cast<unsigned char>(0));
    port.Write(std::as_bytes(std::span(all)), 10s);
    std::array<unsigned char, 256> got{};
    for (std::size_t have = 0; have < got.size();) {
        const ssize_t count = read(master_, got.data() + have, got.size() - have);
        ASSERT_GT(count, 0);
        have += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(all, got);
    ASSERT_EQ(256, write(master_, all.data(), all.size()));
    got.fill(0);
    for (std::size_t have = 0; have < got.size();) {
        const std::size_t count = port.Read(std::as_writable_bytes(std::span(got).subspan(have)), 10s);
        ASSERT_GT(count, 0u);
        have += count;
    }
    EXPECT_EQ(all, got);
    std::byte one{};
    EXPECT_EQ(0u, port.Read({&one, 1}, 0ms));
    ASSERT_EQ(3, write(master_, "old", 3));
    ASSERT_EQ(1u, port.Read({&one, 1}, 10s));
    port.DiscardInput();
    EXPECT_EQ(0u, port.Read({&one, 1}, 0ms));
}

TEST_F(Line, StartsAt9600KnowsItsRatesAndGivesTheFormerSettingsBack) {
    const termios before = Settings();
    {
        SerialPort port(device_);
        EXPECT_EQ(static_cast<speed_t>(B9600), cfgetospeed(std::array{Settings()}.data()));
        port.SetRate(921600);
        EXPECT_THROW(port.SetRate(12345), std::system_error);
        EXPECT_EQ(static_cast<speed_t>(B921600), cfgetospeed(std::array{Settings()}.data()));
        EXPECT_EQ(static_cast<int>(std::errc::device_or_resource_busy), error_of(device_));
    }
    EXPECT_EQ(before.c_lflag, Settings().c_lflag);
    EXPECT_EQ(before.c_ospeed, Settings().c_ospeed);
    EXPECT_EQ(0, error_of(device_));
}

TEST_F(Line, WhatIsGoneOrNoPortIsAnErrorThatNamesTheDevice) {
    SerialPort port(device_);
    HangUp();
    std::byte one{};
    EXPECT_THROW(port.Read({&one, 1}, 10s), std::system_error);
    kiv::test::TemporaryFolder folder;
    EXPECT_EQ(ENOTTY, error_of(folder.Write("file", "no port")));
    EXPECT_EQ(ENOENT, error_of("/dev/no_such_serial_port"));
    EXPECT_NE(0, error_of(""));
}

}  // namespace
