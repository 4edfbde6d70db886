// Firmware images: "OFFSET LENGTH" and letters (d repairs the checksum of the data, h that of the header) on a line,
// then the file. Accepted is what the reference accepts, and the message says why not.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

namespace {

constexpr size_t kHeaderSize = 64;
constexpr size_t kHeaderCrc = 4;
constexpr size_t kDataCrc = 24;

struct Image {
    std::string file;
    int32_t offset;
    int32_t length;
    bool fits() const {
        return length >= static_cast<int32_t>(kHeaderSize) && offset >= 0 &&
               int64_t{offset} + length <= static_cast<int64_t>(file.size());
    }
    std::string_view bytes() const {
        return std::string_view(file).substr(static_cast<size_t>(offset), static_cast<size_t>(length));
    }
};

uint32_t numberAt(std::string_view bytes, size_t offset) {
    uint32_t number = 0;
    for (const char byte : bytes.substr(offset, 4))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

void store(Image& image, size_t offset, uint32_t number) {
    for (size_t byte = 0; byte < 4; byte++)
        image.file[static_cast<size_t>(image.offset) + offset + byte] = static_cast<char>(number >> (24 - 8 * byte));
}

uint32_t headerCrc(const Image& image) {
    std::string header(image.bytes().substr(0, kHeaderSize));
    header.replace(kHeaderCrc, 4, 4, '\0');
    return referenceCrc(header);
}

void repair(Image& image, const std::string& letters) {
    if (!image.fits()) return;
    if (letters.find('d') != std::string::npos) store(image, kDataCrc, referenceCrc(image.bytes().substr(kHeaderSize)));
    if (letters.find('h') != std::string::npos) store(image, kHeaderCrc, headerCrc(image));
}

// "" for an image that is valid.
std::string fault(const Image& image, const std::string& path) {
    if (!image.fits()) return "Bad size: \"" + path + "\" is no valid image\n";
    if (numberAt(image.bytes(), 0) != 0x27051956) return "Bad Magic Number: \"" + path + "\" is no valid image\n";
    if (numberAt(image.bytes(), kHeaderCrc) != headerCrc(image))
        return "*** Warning: \"" + path + "\" has bad header checksum!\n";
    if (numberAt(image.bytes(), kDataCrc) != referenceCrc(image.bytes().substr(kHeaderSize)))
        return "*** Warning: \"" + path + "\" has corrupted data!\n";
    return "";
}

int freeDescriptor() {
    const int descriptor = dup(0);
    close(descriptor);
    return descriptor;
}

void checkFile(const Image& image) {
    const int file = memfd_create("image", MFD_CLOEXEC);
    require(write(file, image.file.data(), image.file.size()) == static_cast<ssize_t>(image.file.size()), "memory");
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    Buffer message(256, '\0');
    const int before = freeDescriptor();
    const uint32_t result = check(path.c_str(), image.offset, image.length, message.data());
    requireEqual(freeDescriptor(), before, "the file is closed again");
    close(file);
    const std::string expected = fault(image, path);
    requireEqual(message.text(), expected, "what is wrong with an image");
    requireEqual(result, expected.empty() ? 1 : 0, "whether an image is valid");
}

void checkCrc(const std::string& bytes, size_t cut) {
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto size = static_cast<uint32_t>(bytes.size());
    const auto first = static_cast<uint32_t>(std::min(cut, bytes.size()));
    const uint32_t whole = crc32(0, data, size);
    requireEqual(whole, referenceCrc(bytes), "a checksum");
    requireEqual(crc32(crc32(0, data, first), data + first, size - first), whole, "a checksum in two parts");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Image image;
    image.offset = input.number();
    image.length = input.number();
    const std::string letters = input.line();
    image.file = input.bytes();
    repair(image, letters);
    checkFile(image);
    checkCrc(image.file, static_cast<size_t>(clampTo(image.offset, 0, INT32_MAX)));
    return 0;
}
