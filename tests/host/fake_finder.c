/* A stand-in for the face finder. It gives one face, a square whose side is 1, and 2 where eyes were asked for; that
 * is, if it is called as it should be: in its own folder, with the paths of cascades there and a picture. */
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "lmf16finder.h"

static int is_here(const char *path, const char *name) {
    char folder[4096];
    if (getcwd(folder, sizeof folder) == NULL) return 0;
    const size_t length = strlen(folder);
    return strncmp(path, folder, length) == 0 && path[length] == '/' && strcmp(path + length + 1, name) == 0;
}

__attribute__((visibility("default"))) LmfHandle CV_FindFace(void *reserved, LmfHandle picture, const char *faces,
                                                             const char *eyes, int32_t findEyes) {
    const int32_t list[8 + 14] = {1, findEyes, [8] = 0, 0, findEyes + 1, findEyes + 1, [15] = 0, 0, 2, 2};
    const int eyes_fit = findEyes ? is_here(eyes, "haarcascade_eye.xml") : *eyes == '\0';
    if (reserved || !eyes_fit || !is_here(faces, getenv("LMF_FAKE_CASCADE")) || !LmfBlockLock(picture)) return NULL;
    LmfBlockUnlock(picture);
    LmfHandle block = LmfBlockAlloc(sizeof list);
    memcpy(LmfBlockLock(block), list, sizeof list);
    LmfBlockUnlock(block);
    return block;
}
