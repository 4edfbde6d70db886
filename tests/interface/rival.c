/** Another library with an MD5Init, under a version of its own. */
#include "pendra/auth.h"

void MD5Init(MD5_CTX* context) {
    context->state[0] = 0;
}
