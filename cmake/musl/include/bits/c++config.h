// Found before the configuration of Debian's libstdc++, which says what glibc has: corrects it to what musl has, and
// adds what the other headers take from glibc's.
#pragma once

// Asked for releases of glibc, the headers must hear what their library heard.
#define __GLIBC_PREREQ(major, minor) 1

typedef struct __locale_struct* __locale_t;

// Bits in the table of __ctype_b_loc(), which musl has as well.
enum {
    _ISblank = 0x0001,
    _IScntrl = 0x0002,
    _ISpunct = 0x0004,
    _ISalnum = 0x0008,
    _ISupper = 0x0100,
    _ISlower = 0x0200,
    _ISalpha = 0x0400,
    _ISdigit = 0x0800,
    _ISxdigit = 0x1000,
    _ISspace = 0x2000,
    _ISprint = 0x4000,
    _ISgraph = 0x8000
};

#include_next <bits/c++config.h>

#undef _GLIBCXX_USE_PTHREAD_COND_CLOCKWAIT
#undef _GLIBCXX_USE_PTHREAD_MUTEX_CLOCKLOCK
#undef _GLIBCXX_USE_PTHREAD_RWLOCK_CLOCKLOCK
