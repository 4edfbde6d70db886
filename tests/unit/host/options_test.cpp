#include "host/options.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace pendra::host {
namespace {

struct Parsed {
    std::optional<int> status;
    Options options;
};

Parsed parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "pendrad");
    Parsed parsed;
    // What it prints is looked at where the program itself is tested.
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    parsed.status = parseOptions(static_cast<int>(arguments.size()), arguments.data(), parsed.options);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    return parsed;
}

TEST(ParseOptions, TreeOnly_LeavesTheDefaults) {
    const auto [status, options] = parse({"--tree", "/var/dev/tree"});
    EXPECT_FALSE(status.has_value());
    EXPECT_EQ(options.treeFile, "/var/dev/tree");
    EXPECT_EQ(options.deviceDirectory, "/var/dev/device");
    EXPECT_EQ(options.tmpDirectory, "");
    EXPECT_EQ(options.scriptDirectory, "");
    EXPECT_EQ(options.bindAddress, "127.0.0.1");
    EXPECT_EQ(options.port, 8480);
    EXPECT_EQ(options.logLevel, 5);
    EXPECT_EQ(options.connections, 128u);
}

TEST(ParseOptions, EveryOption_IsTaken) {
    const auto [status, options] = parse({"--tree", "/t", "--tmp", "/tmp/x", "--scripts", "/s", "--device", "/d",
                                          "--bind", "::1", "--port", "0", "--log-level", "7", "--connections", "4096"});
    EXPECT_FALSE(status.has_value());
    EXPECT_EQ(options.tmpDirectory, "/tmp/x");
    EXPECT_EQ(options.scriptDirectory, "/s");
    EXPECT_EQ(options.deviceDirectory, "/d");
    EXPECT_EQ(options.bindAddress, "::1");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.logLevel, 7);
    EXPECT_EQ(options.connections, 4096u);
}

TEST(ParseOptions, RelativePaths_BecomeAbsolute) {
    const std::string here = std::filesystem::current_path();
    const auto [status, options] = parse({"--tree", "a/../tree", "--tmp", "/tmp/x/", "--scripts", "./s"});
    EXPECT_FALSE(status.has_value());
    EXPECT_EQ(options.treeFile, here + "/tree");
    EXPECT_EQ(options.deviceDirectory, here + "/device");
    EXPECT_EQ(options.tmpDirectory, "/tmp/x");
    EXPECT_EQ(options.scriptDirectory, here + "/s");
}

TEST(ParseOptions, TemporaryDirectory_HasAtMost63Characters) {
    const std::string longest = "/" + std::string(62, 'd');
    EXPECT_FALSE(parse({"--tree", "/t", "--tmp", longest.c_str()}).status.has_value());
    EXPECT_EQ(parse({"--tree", "/t", "--tmp", (longest + "d").c_str()}).status, 2);
}

TEST(ParseOptions, HelpAndVersion_EndWith0) {
    EXPECT_EQ(parse({"--help"}).status, 0);
    EXPECT_EQ(parse({"--version"}).status, 0);
}

TEST(ParseOptions, WrongUsage_EndsWith2) {
    EXPECT_EQ(parse({}).status, 2);
    EXPECT_EQ(parse({"--tree"}).status, 2);
    EXPECT_EQ(parse({"--tree", "/t", "--port", "65536"}).status, 2);
    EXPECT_EQ(parse({"--tree", "/t", "--log-level", "8"}).status, 2);
    EXPECT_EQ(parse({"--tree", "/t", "--connections", "7"}).status, 2);
    EXPECT_EQ(parse({"--tree", "/t", "--connections", "4097"}).status, 2);
    EXPECT_EQ(parse({"--tree", "/t", "more"}).status, 2);
}

} // namespace
} // namespace pendra::host
