/**
 * @file
 * A shared library that calls libc by name, as the device's library does.
 */
#include <linux/wireless.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {

long probe_uptime() {
    struct sysinfo info {};
    return sysinfo(&info) == 0 ? info.uptime : -1;
}

/** Opens, writes and closes a file. @return whether it could be opened. */
bool probe_write(const char* path, const char* mode, const char* text) {
    FILE* file = fopen(path, mode);
    if (!file) return false;
    fputs(text, file);
    fclose(file);
    return true;
}

/** Reads the start of a file. @return whether it could be opened. */
bool probe_read(const char* path, char* text, int capacity) {
    FILE* file = fopen(path, "r");
    if (!file) return false;
    const size_t length = fread(text, 1, static_cast<size_t>(capacity - 1), file);
    text[length] = '\0';
    fclose(file);
    return true;
}

/** Asks a wireless driver for its stations. @return 0, or errno. */
int probe_stations(const char* interface, unsigned char* table) {
    const int handle = socket(AF_INET, SOCK_DGRAM, 0);
    iwreq request{};
    strncpy(request.ifr_name, interface, sizeof request.ifr_name - 1);
    request.u.data.pointer = table;
    const int result = ioctl(handle, 0x8BFF, &request);
    const int reason = errno;
    close(handle);
    return result == 0 ? 0 : reason;
}

/** Another request. @return the bytes that wait in a pipe. */
int probe_waiting(int handle) {
    int count = -1;
    return ioctl(handle, FIONREAD, &count) == 0 ? count : -1;
}

int probe_shell(const char* command) {
    return system(command);
}

} // extern "C"
