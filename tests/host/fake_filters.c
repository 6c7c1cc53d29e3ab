/* A stand-in for the filter library. It does what the environment's LMF_FAKE asks for, so that the tests see how the
 * program takes results that the real library gives seldom or never. */
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "lmf16filter.h"

#define FAKE __attribute__((visibility("default")))

/* The settings that the call was given go where the tests can read them: into the file "seen.ini". */
static void keep_settings(const LmfExtendedHooks *given) {
    FILE *seen = fopen("seen.ini", "w");
    fprintf(seen, "\n%s", given->settings);
    fclose(seen);
}

static LmfHandle copy_of(LmfHandle block) {
    LmfHandle copy = LmfBlockAlloc(LmfBlockSize(block));
    memcpy(LmfBlockLock(copy), LmfBlockLock(block), LmfBlockSize(block));
    LmfBlockUnlock(block);
    LmfBlockUnlock(copy);
    return copy;
}

static LmfHandle grey_picture(uint32_t width, uint32_t height) {
    const uint32_t header[10] = {40, width, height, 1 | 8 << 16, 0, (width + 3) / 4 * 4 * height, 0, 0, 256, 256};
    LmfHandle block = LmfBlockAlloc(40 + 1024 + header[5]);
    memcpy(LmfBlockLock(block), header, sizeof header);
    LmfBlockUnlock(block);
    return block;
}

FAKE uint64_t LMF16FILTERDoImageFilter(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second,
                                       int32_t style, int32_t sliders, uint32_t flags, void *record, const char *path,
                                       uint32_t mask, int32_t reserved, const HostHooks *hooks) {
    const char *wish = getenv("LMF_FAKE");
    (void)owner, (void)style, (void)sliders, (void)path, (void)mask, (void)reserved, (void)record;
    if (!callback || flags != (LMF_RUN_DIRECT | LMF_RUN_BATCH | LMF_RUN_EXTENDED)) return 0;
    LmfExtendedHooks *given = (LmfExtendedHooks *)hooks;
    keep_settings(given);
    if (strncmp(wish, "fail:", 5) == 0) {
        given->errorCode = atoi(wish + 5);
        return 0;
    }
    uint32_t width = 0;
    memcpy(&width, (char *)LmfBlockLock(*picture) + 4, sizeof width);
    LmfBlockUnlock(*picture);
    if (width == 5 && strcmp(wish, "crash at 5") == 0) abort();
    if (width == 5 && strncmp(wish, "signal at 5:", 12) == 0) {
        kill(getppid(), atoi(wish + 12));
        pause();
    }
    *picture = copy_of(*picture);
    if (strcmp(wish, "other alpha") == 0) *second = grey_picture(3, 2);
    if (strcmp(wish, "lying header") == 0) {
        const uint32_t size = 5000;
        memcpy((char *)LmfBlockLock(*picture) + 4, &size, sizeof size);
        LmfBlockUnlock(*picture);
    }
    if (strcmp(wish, "interrupt") == 0) raise(15);
    return 1;
}

FAKE const char *LMF16FILTERGetCopyright(void) {
    return "a stand-in";
}
