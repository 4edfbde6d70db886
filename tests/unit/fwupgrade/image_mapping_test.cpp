// How the image check maps a file, and files that shrink under it. This program's mmap and munmap stand in for libc's.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>

#include "image_check.h"

using namespace pendra::test;

namespace {

struct Mapping {
    void* start;
    size_t size;
    bool operator==(const Mapping& other) const { return start == other.start && size == other.size; }
};

// What the library maps while a test runs.
struct MappingWatch {
    bool watches = false;
    int failure = 0;                            // the error of the next mapping
    std::function<void()> afterMapping = [] {}; // what happens to the file before it is read
    int protection = 0;
    int flags = 0;
    std::vector<Mapping> mapped;
    std::vector<Mapping> unmapped;
};

MappingWatch& watch() {
    static MappingWatch instance;
    return instance;
}

class ImageMapping : public ImageCheckTest {
  protected:
    ImageMapping() {
        watch() = {};
        watch().watches = true;
    }
    ~ImageMapping() override { watch() = {}; }

    // Cuts the file between its mapping and its first reading.
    void shrinkTo(size_t size) {
        watch().afterMapping = [this, size] { EXPECT_EQ(0, truncate(file().c_str(), static_cast<off_t>(size))); };
    }
};

TEST_F(ImageMapping, WholeFile_IsMappedReadOnlyAndSharedAndUnmapped) {
    const std::string image = makeImage("data");
    EXPECT_EQ(1U, checkPart(std::string(5000, 'x') + image + "y", 5000, 68));
    ASSERT_EQ(1U, watch().mapped.size());
    EXPECT_EQ(5069U, watch().mapped[0].size);
    EXPECT_EQ(PROT_READ, watch().protection);
    EXPECT_EQ(MAP_SHARED, watch().flags);
    EXPECT_EQ(watch().mapped, watch().unmapped);
}

TEST_F(ImageMapping, RefusedImage_IsUnmapped) {
    std::string wrongMagic = makeImage("data");
    wrongMagic[0] = 'x';
    std::string wrongHeader = makeImage("data");
    wrongHeader[40] = 'x';
    std::string wrongData = makeImage("data");
    wrongData.back() = 'x';
    for (const std::string& image : {wrongMagic, wrongHeader, wrongData})
        EXPECT_EQ(0U, checkWhole(image));
    EXPECT_EQ(3U, watch().mapped.size());
    EXPECT_EQ(watch().mapped, watch().unmapped);
}

TEST_F(ImageMapping, WhatDoesNotFit_IsNeverMapped) {
    const std::string image = makeImage("data");
    EXPECT_EQ(0U, checkPart(image, 0, 63));
    EXPECT_EQ(0U, checkPart(image, 0, 69));
    EXPECT_EQ(0U, checkPart(image, -1, 68));
    EXPECT_EQ(0U, checkPart(image, INT_MAX, INT_MAX));
    EXPECT_EQ(0U, checkPart("", 0, 64));
    EXPECT_EQ(0U, checkFile(path("none"), 0, 64));
    EXPECT_TRUE(watch().mapped.empty());
    EXPECT_TRUE(watch().unmapped.empty());
}

TEST_F(ImageMapping, FailedMapping_TellsTheSystemsError) {
    for (const int failure : {ENOMEM, ENODEV, EACCES}) {
        watch().failure = failure;
        EXPECT_EQ(0U, checkWhole(makeImage("data")));
        EXPECT_EQ("Can't mmap " + file() + ": " + std::strerror(failure) + "\n", message());
    }
    EXPECT_TRUE(watch().unmapped.empty());
}

// A process without standard input gets descriptor 0 for the file.
TEST_F(ImageMapping, DescriptorZero_CountsAsAFailedOpen) {
    writeFile(file(), makeImage("data"));
    const int standardInput = fcntl(STDIN_FILENO, F_DUPFD, 10);
    close(STDIN_FILENO);
    char text[256] = "";
    const uint32_t result = check(file().c_str(), 0, 68, text);
    const bool isClosed = fcntl(STDIN_FILENO, F_GETFD) == -1;
    if (standardInput >= 0) {
        dup2(standardInput, STDIN_FILENO);
        close(standardInput);
    }
    EXPECT_EQ(0U, result);
    EXPECT_TRUE(isClosed);
    const std::string start = "Can't open " + file() + ": ";
    const std::string message = text;
    EXPECT_EQ(start, message.substr(0, start.size()));
    EXPECT_EQ('\n', message.back());
    EXPECT_TRUE(watch().mapped.empty());
}

// The pages behind the new end are gone; those before it hold zeros up to their own end.
TEST_F(ImageMapping, FileThatLosesData_IsCorruptedAndUnmapped) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const std::string image = makeImage(imageData(3 * page) + "x");
    for (const size_t size : {kImageHeaderSize, page, page + 1, 2 * page, image.size() - 1}) {
        SCOPED_TRACE(size);
        shrinkTo(size);
        EXPECT_EQ(0U, checkWhole(image));
        EXPECT_EQ(badData(file()), message());
    }
    EXPECT_EQ(5U, watch().mapped.size());
    EXPECT_EQ(watch().mapped, watch().unmapped);
}

TEST_F(ImageMapping, FileThatLosesEverything_IsRefusedAndUnmapped) {
    const std::string image = makeImage(imageData(100));
    shrinkTo(0);
    EXPECT_EQ(0U, checkWhole(image));
    const std::string told = message();
    EXPECT_TRUE(told == badMagic(file()) || told == badHeader(file()) || told == badData(file())) << told;
    EXPECT_EQ(watch().mapped, watch().unmapped);
}

// The next check works as the first did, and a host's own handler is back in its place.
TEST_F(ImageMapping, AfterAFileThatShrank_EverythingIsAsBefore) {
    struct sigaction own = {};
    struct sigaction previous = {};
    struct sigaction left = {};
    own.sa_handler = [](int) {};
    sigaction(SIGBUS, &own, &previous);
    for (int round = 0; round < 3; round++) {
        shrinkTo(0);
        EXPECT_EQ(0U, checkWhole(makeImage("data")));
        watch().afterMapping = [] {};
        EXPECT_EQ(1U, checkWhole(makeImage("data")));
    }
    sigaction(SIGBUS, &previous, &left);
    EXPECT_EQ(own.sa_handler, left.sa_handler);
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(0, sigismember(&blocked, SIGBUS));
}

} // namespace

extern "C" {

void* mmap(void* start, size_t size, int protection, int flags, int descriptor, off_t offset) {
    using Function = void* (*)(void*, size_t, int, int, int, off_t);
    static const auto realMmap = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "mmap"));
    if (!watch().watches || descriptor < 0) return realMmap(start, size, protection, flags, descriptor, offset);
    if (watch().failure != 0) {
        errno = watch().failure;
        return MAP_FAILED;
    }
    void* mapping = realMmap(start, size, protection, flags, descriptor, offset);
    watch().mapped.push_back({mapping, size});
    watch().protection = protection;
    watch().flags = flags;
    watch().afterMapping();
    return mapping;
}

int munmap(void* start, size_t size) {
    static const auto realMunmap = reinterpret_cast<int (*)(void*, size_t)>(dlsym(RTLD_NEXT, "munmap"));
    if (watch().watches) watch().unmapped.push_back({start, size});
    return realMunmap(start, size);
}

} // extern "C"
