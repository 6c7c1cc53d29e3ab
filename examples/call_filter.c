/* A host in one page: names the filters of the menu, runs one of them with a setting on a small picture, and prints
 * what came out.
 *
 *   cc call_filter.c $(pkg-config --cflags --libs lmf16filter) -o call_filter
 *   ./call_filter [LIBRARY]    liblmf16filter.so.1 where the loader finds it, when none is named */
#include <dlfcn.h>
#include <lmf16filter.h>
#include <stdio.h>
#include <string.h>

static int32_t Validate(void *owner, const char *text) {
    (void)owner;
    (void)text;
    return 1;
}

/* A picture of 24 bits that grows brighter from left to right, as a block of the host's. */
static LmfHandle MakePicture(int32_t width, int32_t height) {
    const size_t stride = ((size_t)width * 24 + 31) / 32 * 4;
    LmfHandle picture = LmfBlockAlloc(40 + stride * (size_t)height);
    unsigned char *bytes = LmfBlockLock(picture);
    if (bytes == NULL) return NULL;
    const int32_t head[] = {40, width, height, 1 | 24 << 16, 0, (int32_t)(stride * (size_t)height)};
    memcpy(bytes, head, sizeof head);
    for (int32_t y = 0; y < height; y++)
        for (int32_t x = 0; x < width; x++) memset(bytes + 40 + stride * (size_t)y + 3 * (size_t)x, 255 * x / width, 3);
    LmfBlockUnlock(picture);
    return picture;
}

static void PrintMenu(LmfGetMenu getMenu, LmfEnableMenu enableMenu, LmfHandle picture) {
    const HostRestrictions restrictions = {.picture = picture};
    LmfHandle block = getMenu(1000, 1);
    enableMenu(block, 1000, &restrictions);
    const LmfMenu *menu = LmfBlockLock(block);
    if (menu == NULL) return;
    const LmfMenuItem *items = LmfMenuItems(menu);
    for (uint32_t i = 0; i < menu->count; i++)
        printf("%u %s > %s%s\n", items[i].id, items[i].category, items[i].name, items[i].enabled ? "" : " (greyed)");
    LmfBlockUnlock(block);
    LmfBlockFree(block);
}

int main(int count, char **arguments) {
    void *library = dlopen(count > 1 ? arguments[1] : "liblmf16filter.so.1", RTLD_NOW);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    LmfDoImageFilter doImageFilter = (LmfDoImageFilter)dlsym(library, "LMF16FILTERDoImageFilter");
    LmfGetMenu getMenu = (LmfGetMenu)dlsym(library, "LMF16FILTERGetMenu");
    LmfEnableMenu enableMenu = (LmfEnableMenu)dlsym(library, "LMF16FILTEREnableMenu");

    LmfHandle source = MakePicture(64, 48);
    PrintMenu(getMenu, enableMenu, source);

    LmfHandle picture = source; /* in: the source; out: the result, a new block */
    LmfHandle second = NULL;    /* its alpha as an 8-bit grey picture, or none */
    HostRecord record = {.filterIndex = LMF_FILTER_ROTATE};
    LmfExtendedHooks extended = {.size = sizeof extended};
    extended.settings = "FilterRotateAngle = 450\n"; /* tenths of a degree */
    const uint64_t done = doImageFilter(NULL, &picture, Validate, &second, 0, 0, LMF_RUN_DIRECT | LMF_RUN_EXTENDED,
                                        &record, NULL, 0, 0, &extended.hooks);
    if (done) {
        const int32_t *head = LmfBlockLock(picture);
        printf("64 x 48 became %d x %d\n", head[1], head[2]);
        LmfBlockUnlock(picture);
        LmfBlockFree(picture);
        LmfBlockFree(second);
    } else {
        fprintf(stderr, "error %d\n", extended.errorCode);
    }
    LmfBlockFree(source);
    return done ? 0 : 1;
}
