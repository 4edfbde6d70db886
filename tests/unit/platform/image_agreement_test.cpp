// The image check and mkimage, the tool that makes images, say the same of every image.
#include <gtest/gtest.h>

#include <random>

#include "pendra/fwupgrade.h"
#include "scratch.h"

namespace {

using namespace pendra::test;

bool checkTakes(const std::string& file) {
    char message[256] = "";
    const auto size = static_cast<int32_t>(content(file).size());
    const bool taken = check(file.c_str(), 0, size, message) == 1;
    EXPECT_EQ(taken, message[0] == '\0') << message;
    return taken;
}

class ImageAgreement : public testing::Test {
  protected:
    [[nodiscard]] std::string make(const std::string& data, const std::string& options) const {
        store(scratch.file("data"), data);
        const Ran made = run(scratch, "mkimage " + options + " -d " + scratch.file("data") + " " + file);
        EXPECT_EQ(made.status, 0) << made.errors;
        return content(file);
    }
    [[nodiscard]] bool mkimageTakes() const { return run(scratch, "mkimage -T firmware -l " + file).status == 0; }
    void expectAgreement(const std::string& image, bool valid, const std::string& what) const {
        store(file, image);
        EXPECT_EQ(checkTakes(file), valid) << what;
        EXPECT_EQ(mkimageTakes(), valid) << what;
    }

    Scratch scratch;
    std::string file = scratch.file("image");
};

std::string randomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

TEST_F(ImageAgreement, ImagesOfManyKinds_AreValid) {
    const std::string kinds[] = {"-A mips -O linux -T firmware -C none -n 'PB100 1.4.0'",
                                 "-A mips -O linux -T firmware -C gzip -a 0x80020000 -e 0x80020400",
                                 "-A arm -O u-boot -T firmware -C lzma -n " + std::string(32, 'n')};
    std::mt19937 random(11);
    for (const std::string& kind : kinds)
        for (const std::size_t size : {1U, 2U, 63U, 64U, 65U, 4096U, 100003U})
            expectAgreement(make(randomBytes(random, size), kind), true, kind + " " + std::to_string(size));
}

TEST_F(ImageAgreement, DamagedImages_AreNot) {
    std::mt19937 random(12);
    const std::string image = make(randomBytes(random, 5000), "-A mips -O linux -T firmware -C none");
    for (int tries = 0; tries < 60; ++tries) {
        // Every other one in the header.
        const std::size_t byte = random() % (tries % 2 == 0 ? 64 : image.size());
        std::string damaged = image;
        damaged[byte] = static_cast<char>(damaged[byte] ^ 1 << random() % 8);
        expectAgreement(damaged, false, "byte " + std::to_string(byte));
    }
}

TEST_F(ImageAgreement, CutAndProlongedImages_AreNot) {
    std::mt19937 random(13);
    const std::string image = make(randomBytes(random, 5000), "-A mips -O linux -T firmware -C none");
    for (const std::size_t size : {0U, 1U, 63U, 64U, 65U, 5063U})
        expectAgreement(image.substr(0, size), false, "cut to " + std::to_string(size));
    expectAgreement(image + "x", false, "prolonged");
}

} // namespace
