#include "client/text_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "client/failure.h"

namespace pendra::client {
namespace {

class ReadTextFile : public testing::Test {
  protected:
    ~ReadTextFile() override { std::remove(path_.c_str()); }

    void store(const std::string& content) const { std::ofstream(path_, std::ios::binary) << content; }
    void expectUnreadable(const std::string& name, const std::string& line) const {
        try {
            readTextFile(name);
            ADD_FAILURE() << name << " was read";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), kUnreadable);
            EXPECT_EQ(failure.what(), line);
        }
    }

    const std::string path_ = testing::TempDir() + "zepctl-" + std::to_string(::getpid());
};

TEST_F(ReadTextFile, Content_IsReadByteByByte) {
    const std::string content = std::string("<root>\r\n\0</root>", 16) + std::string(100'000, 'x');
    store(content);
    EXPECT_EQ(readTextFile(path_), content);
}

TEST_F(ReadTextFile, AbsentEmptyOrDirectory_IsAFailure) {
    expectUnreadable(path_, "Cannot open " + path_ + ": No such file or directory.");
    store("");
    expectUnreadable(path_, path_ + " is empty.");
    expectUnreadable("/", "Cannot read /: Is a directory.");
}

} // namespace
} // namespace pendra::client
