/* A host of ten lines, built against the installed library; the device's functions are in platform.c. */
#include <pendra/pendra.h>
#include <stdio.h>

int main(void) {
    char name[ZEPVAR_VALUE_SIZE];
    init_ZepVar();
    if (get_ZepVar("zep_DeviceName", name, 0) != 0) return 1;
    printf("libpendra %s on %s\n", pendraLibVersion(), name);
    return 0;
}
