// The check of a firmware image: sizes, header and data.
#include "image_check.h"

#include <cstring>

using namespace pendra::test;

namespace {

class ImageCheck : public ImageCheckTest {};

TEST_F(ImageCheck, ValidImage_PassesWithoutAMessage) {
    EXPECT_EQ(1U, checkWhole(makeImage(imageData(1000))));
    EXPECT_TRUE(saysNothing());
}

// Made by the common image tool.
TEST_F(ImageCheck, ImageOfTheImageTool_Passes) {
    const unsigned char header[kImageHeaderSize + 1] =
        "\x27\x05\x19\x56\x4b\x1c\xab\x6a\x65\x53\xf1\x00\x00\x00\x00\x15\x80\x02\x00\x00\x80\x02\x04\x00"
        "\x6b\xc5\x0c\x11\x05\x05\x02\x03PX-100 2.0.1";
    const std::string image(reinterpret_cast<const char*>(header), kImageHeaderSize);
    EXPECT_EQ(1U, checkWhole(image + "firmware of a PX-100\n"));
}

TEST_F(ImageCheck, HeaderAlone_PassesWithTheCrcOfNoData) {
    EXPECT_EQ(1U, checkWhole(makeImage("")));
    EXPECT_TRUE(saysNothing());
}

TEST_F(ImageCheck, HeaderAloneWithAnotherDataCrc_IsCorrupted) {
    std::string image = makeImage("");
    putNumber(image, 24, 1);
    sealHeader(image);
    EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(badData(file()), message());
}

TEST_F(ImageCheck, OneByteOfData_IsChecked) {
    EXPECT_EQ(1U, checkWhole(makeImage("x")));
    std::string image = makeImage("x");
    image.back() = 'y';
    EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(badData(file()), message());
}

TEST_F(ImageCheck, ImageOf20Megabytes_IsChecked) {
    constexpr size_t kSize = 20000000;
    std::string image = makeImage(imageData(kSize - kImageHeaderSize));
    EXPECT_EQ(1U, checkWhole(image));
    image.back() = static_cast<char>(image.back() ^ 1);
    EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(badData(file()), message());
}

TEST_F(ImageCheck, LengthBelowTheHeader_IsABadSize) {
    const std::string image = makeImage(imageData(100));
    for (const int32_t length : {63, 1, 0, -1, -64, INT_MIN}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(0U, checkPart(image, 0, length));
        EXPECT_EQ(badSize(file()), message());
    }
}

// The length is looked at before the file is.
TEST_F(ImageCheck, LengthBelowTheHeaderOfAMissingFile_IsABadSize) {
    EXPECT_EQ(0U, checkFile(path("none"), 0, 63));
    EXPECT_EQ(badSize(path("none")), message());
}

TEST_F(ImageCheck, MissingFile_CannotBeExamined) {
    EXPECT_EQ(0U, checkFile(path("none"), 0, 64));
    EXPECT_EQ("Can't stat " + path("none") + ": " + std::strerror(EBADF) + "\n", message());
}

// What does not fit is told apart only once the file was there.
TEST_F(ImageCheck, MissingFileAndNegativeOffset_CannotBeExamined) {
    EXPECT_EQ(0U, checkFile(path("none"), -1, 64));
    EXPECT_EQ("Can't stat " + path("none") + ": " + std::strerror(EBADF) + "\n", message());
}

TEST_F(ImageCheck, FileOfTooFewBytes_IsABadSize) {
    const std::string image = makeImage("x");
    for (const size_t size : {0U, 1U, 63U, 64U}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(0U, checkPart(image.substr(0, size), 0, 65));
        EXPECT_EQ(badSize(file()), message());
    }
    EXPECT_EQ(1U, checkPart(image, 0, 65));
}

TEST_F(ImageCheck, EmptyFileAndALengthOfAHeader_IsABadSize) {
    EXPECT_EQ(0U, checkPart("", 0, 64));
    EXPECT_EQ(badSize(file()), message());
}

// 36 bytes stand before the image and 36 behind it.
TEST_F(ImageCheck, OffsetAndLength_MustFitTheFile) {
    const std::string image = makeImage(imageData(64));
    const std::string content = std::string(36, 'x') + image + std::string(36, 'y');
    const struct {
        int32_t offset;
        int32_t length;
        bool fits;
    } rows[] = {
        {36, 128, true},           {0, 200, true},       {0, 201, false},
        {136, 64, true},           {137, 64, false},     {136, 65, false},
        {200, 64, false},          {201, 64, false},     {-1, 64, false},
        {-1, 128, false},          {-64, 128, false},    {INT_MIN, 64, false},
        {INT_MAX, 64, false},      {0, INT_MAX, false},  {36, INT_MAX, false},
        {INT_MAX, INT_MAX, false}, {-1, INT_MAX, false}, {INT_MIN, INT_MAX, false},
        {INT_MAX - 63, 64, false}, {1, INT_MAX, false},
    };
    for (const auto& [offset, length, fits] : rows) {
        SCOPED_TRACE(std::to_string(offset) + " " + std::to_string(length));
        const bool isImage = offset == 36;
        EXPECT_EQ(fits && isImage ? 1U : 0U, checkPart(content, offset, length));
        EXPECT_EQ(!fits ? badSize(file()) : isImage ? "" : badMagic(file()), message());
    }
}

TEST_F(ImageCheck, EveryOffset_FindsItsImage) {
    const std::string image = makeImage(imageData(50));
    const int32_t length = static_cast<int32_t>(image.size());
    for (const size_t offset : {1U, 2U, 3U, 63U, 4095U, 4096U, 4097U, 70000U}) {
        SCOPED_TRACE(offset);
        const std::string content = std::string(offset, '\xFF') + image;
        EXPECT_EQ(1U, checkPart(content, static_cast<int32_t>(offset), length));
        EXPECT_EQ(0U, checkPart(content, static_cast<int32_t>(offset) - 1, length));
        EXPECT_EQ(badMagic(file()), message());
    }
}

// The caller's length counts, not the header's.
TEST_F(ImageCheck, ShorterLength_ChecksLessData) {
    const std::string image = makeImage(imageData(100));
    EXPECT_EQ(0U, checkPart(image, 0, 163));
    EXPECT_EQ(badData(file()), message());
    EXPECT_EQ(0U, checkPart(image + "x", 0, 165));
    EXPECT_EQ(badData(file()), message());
    EXPECT_EQ(1U, checkPart(image + "x", 0, 164));
}

TEST_F(ImageCheck, DataSizeFieldOfTheHeader_DoesNotCount) {
    std::string image = makeImage(imageData(100));
    for (const uint32_t size : {0U, 99U, 101U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        putNumber(image, 12, size);
        sealHeader(image);
        EXPECT_EQ(1U, checkWhole(image)) << size;
    }
}

TEST_F(ImageCheck, WrongMagic_IsToldFirst) {
    std::string image = makeImage("data");
    for (const uint32_t magic : {0U, 0x56190527U, 0x27051957U, 0xFFFFFFFFU}) {
        putNumber(image, 0, magic);
        EXPECT_EQ(0U, checkWhole(image));
        EXPECT_EQ(badMagic(file()), message());
    }
    sealHeader(image);
    EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(badMagic(file()), message());
}

TEST_F(ImageCheck, EverySingleBitOfTheHeader_Counts) {
    const std::string image = makeImage(imageData(20));
    for (size_t bit = 0; bit < 8 * kImageHeaderSize; bit++) {
        SCOPED_TRACE(bit);
        std::string damaged = image;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        EXPECT_EQ(0U, checkWhole(damaged));
        EXPECT_EQ(bit < 32 ? badMagic(file()) : badHeader(file()), message());
    }
}

TEST_F(ImageCheck, EverySingleBitOfTheData_Counts) {
    const std::string image = makeImage(imageData(11));
    for (size_t bit = 8 * kImageHeaderSize; bit < 8 * image.size(); bit++) {
        SCOPED_TRACE(bit);
        std::string damaged = image;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        EXPECT_EQ(0U, checkWhole(damaged));
        EXPECT_EQ(badData(file()), message());
    }
}

TEST_F(ImageCheck, DamagedHeaderAndData_TellsOfTheHeader) {
    std::string image = makeImage("data");
    image[40] = '?';
    image.back() = '?';
    EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(badHeader(file()), message());
}

TEST_F(ImageCheck, File_StaysAsItWas) {
    const std::string image = makeImage(imageData(100));
    EXPECT_EQ(1U, checkWhole(image));
    EXPECT_EQ(image, readFile(file()));
    EXPECT_TRUE(device().events.empty());
}

TEST_F(ImageCheck, LongPath_CutsTheMessageAt255Bytes) {
    const std::string name = path(std::string(240, 'n'));
    writeFile(name, makeImage("data"));
    EXPECT_EQ(0U, checkFile(name, 0, 63));
    EXPECT_EQ(badSize(name).substr(0, 255), message());
    EXPECT_EQ(1U, checkFile(name, 0, 68));
    const std::string missing = path(std::string(400, 'n'));
    EXPECT_EQ(0U, checkFile(missing, 0, 68));
    EXPECT_EQ(("Can't stat " + missing).substr(0, 255), message());
}

// A message of exactly 254, 255 and 256 bytes.
TEST_F(ImageCheck, MessageAtTheCapacity_KeepsWhatFits) {
    for (const size_t size : {254U, 255U, 256U}) {
        SCOPED_TRACE(size);
        const size_t around = badSize(path("")).size();
        const std::string name = path(std::string(size - around, 'n'));
        EXPECT_EQ(size, badSize(name).size());
        EXPECT_EQ(0U, checkFile(name, 0, 0));
        EXPECT_EQ(badSize(name).substr(0, 255), message());
    }
}

TEST_F(ImageCheck, NullMessage_OnlyLosesTheText) {
    writeFile(file(), makeImage("data"));
    EXPECT_EQ(1U, check(file().c_str(), 0, 68, nullptr));
    EXPECT_EQ(0U, check(file().c_str(), 0, 63, nullptr));
    EXPECT_EQ(0U, check(file().c_str(), 0, 67, nullptr));
    EXPECT_EQ(0U, check(path("none").c_str(), 0, 68, nullptr));
}

TEST_F(ImageCheck, NullPath_IsNoFile) {
    char message[256] = "";
    EXPECT_EQ(0U, check(nullptr, 0, 64, message));
    EXPECT_EQ(std::string("Can't stat : ") + std::strerror(EBADF) + "\n", message);
    EXPECT_EQ(0U, check(nullptr, 0, 63, message));
    EXPECT_STREQ("Bad size: \"\" is no valid image\n", message);
}

TEST_F(ImageCheck, Directory_IsRefused) {
    EXPECT_EQ(0U, checkFile(directory(), 0, 64));
    EXPECT_FALSE(saysNothing());
}

} // namespace
