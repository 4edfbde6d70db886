/* The least that a device supplies: a few nodes that nobody can change. */
#include <pendra/platform.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const struct {
    const char* path;
    const char* text;
} nodes[] = {
    {"/bramble/specversion/major", "1"},
    {"/bramble/specversion/minor", "1"},
    {"/bramble/tempdirecory", "."},
    {"/sys/friendlyname", "Kitchen"},
};

static const char* find(const char* path) {
    for (size_t i = 0; i < sizeof nodes / sizeof nodes[0]; ++i) {
        if (strcmp(nodes[i].path, path) == 0) return nodes[i].text;
    }
    return NULL;
}

static const char* findFormatted(const char* pathFormat, va_list arguments) {
    char path[256];
    vsnprintf(path, sizeof path, pathFormat, arguments);
    return find(path);
}

int xget_str(char* destination, const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const char* text = findFormatted(pathFormat, arguments);
    va_end(arguments);
    strcpy(destination, text == NULL ? "" : text);
    return text == NULL ? -1 : 0;
}

int xget_int(const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const char* text = findFormatted(pathFormat, arguments);
    va_end(arguments);
    return text == NULL ? -1 : atoi(text);
}

int xset_str(const char* value, const char* path) {
    (void)value, (void)path;
    return -1;
}

int xset_int(int value, const char* path) {
    (void)value, (void)path;
    return -1;
}

int xdel(const char* path) {
    (void)path;
    return -1;
}

int tcapi_set(const char* node, const char* attribute, const char* value) {
    (void)node, (void)attribute, (void)value;
    return -1;
}

int tcapi_commit(const char* node) {
    (void)node;
    return -1;
}
