/** A device without nodes, for programs in which no road of the library runs. */
#include "pendra/platform.h"

int xget_str(char* destination, const char* pathFormat, ...) {
    (void)pathFormat;
    destination[0] = '\0';
    return -1;
}

int xget_int(const char* pathFormat, ...) {
    (void)pathFormat;
    return -1;
}

int xset_str(const char* value, const char* path) {
    (void)value;
    (void)path;
    return -1;
}

int xset_int(int value, const char* path) {
    (void)value;
    (void)path;
    return -1;
}

int xdel(const char* path) {
    (void)path;
    return -1;
}

int tcapi_set(const char* node, const char* attribute, const char* value) {
    (void)node;
    (void)attribute;
    (void)value;
    return -1;
}

int tcapi_commit(const char* node) {
    (void)node;
    return -1;
}
