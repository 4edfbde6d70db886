// What Debian's static libstdc++ and libgcc_eh, made for glibc, take from it and musl lacks. Only the test programs are
// linked with it: the library needs no C++ runtime. Locale "C" is the only one.
#define _GNU_SOURCE
#include <link.h>
#include <locale.h>
#include <string.h>
#include <sys/random.h>
#include <time.h>

// Nonzero would let shared pointers skip their locks.
char __libc_single_threaded = 0;

// A locale as libstdc++ looks into it: glibc's layout. The leading null pointers mean "C" to musl's own functions.
struct locale_tables {
    const void* categories[13];
    const unsigned short* classes;
    const int* lower;
    const int* upper;
    const char* names[13];
};

const unsigned short** __ctype_b_loc(void);
const int** __ctype_tolower_loc(void);
const int** __ctype_toupper_loc(void);

struct locale_tables* __newlocale(int categories, const char* name, struct locale_tables* base);
struct locale_tables* __newlocale(int categories, const char* name, struct locale_tables* base) {
    static struct locale_tables tables;
    (void)categories;
    (void)base;
    if (strcmp(name, "C") != 0 && strcmp(name, "POSIX") != 0) return NULL;
    tables.classes = *__ctype_b_loc();
    tables.lower = *__ctype_tolower_loc();
    tables.upper = *__ctype_toupper_loc();
    return &tables;
}

struct locale_tables* __duplocale(struct locale_tables* tables);
struct locale_tables* __duplocale(struct locale_tables* tables) {
    return tables;
}

void __freelocale(struct locale_tables* tables);
void __freelocale(struct locale_tables* tables) {
    (void)tables;
}

size_t __strftime_l(char* text, size_t size, const char* format, const struct tm* time, locale_t locale);
size_t __strftime_l(char* text, size_t size, const char* format, const struct tm* time, locale_t locale) {
    return strftime_l(text, size, format, time, locale);
}

unsigned arc4random(void);
unsigned arc4random(void) {
    unsigned number;
    while (getrandom(&number, sizeof number, 0) != (ssize_t)sizeof number)
        continue;
    return number;
}

// Where the unwinder looks for the frames of an address.
struct found_object {
    unsigned long long flags;
    void* start;
    void* end;
    struct link_map* map;
    void* eh_frame_header;
    unsigned long long reserved[7];
};

struct search {
    unsigned long address;
    struct found_object* found;
};

static int look_into(struct dl_phdr_info* object, size_t size, void* argument) {
    const struct search* search = argument;
    int holds_address = 0;
    (void)size;
    search->found->eh_frame_header = NULL;
    for (int i = 0; i < object->dlpi_phnum; i++) {
        const ElfW(Phdr)* segment = &object->dlpi_phdr[i];
        const unsigned long start = object->dlpi_addr + segment->p_vaddr;
        if (segment->p_type == PT_GNU_EH_FRAME) search->found->eh_frame_header = (void*)start;
        if (segment->p_type != PT_LOAD || search->address - start >= segment->p_memsz) continue;
        search->found->start = (void*)start;
        search->found->end = (void*)(start + segment->p_memsz);
        holds_address = 1;
    }
    return holds_address && search->found->eh_frame_header != NULL;
}

int _dl_find_object(void* address, struct found_object* found);
int _dl_find_object(void* address, struct found_object* found) {
    struct search search = {(unsigned long)address, found};
    return dl_iterate_phdr(look_into, &search) ? 0 : -1;
}
