/* Stands before the C library and lets one call of a program fail: the FAIL_AT-th of the kind FAIL_KIND names, counted
 * over the program and its children.
 *   memory  an allocation finds none
 *   file    a file call gives an input/output error
 *   signal  a file call is done, and then the process gets SIGTERM
 * With FAIL_COUNT=FILE the number of calls is written there at the end. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);

static long *calls; /* shared with the children; null before the start */
static long fail_at;
static const char *kind = "";

__attribute__((constructor)) static void begin(void) {
    if (getenv("FAIL_KIND")) kind = getenv("FAIL_KIND");
    if (getenv("FAIL_AT")) fail_at = atol(getenv("FAIL_AT"));
    void *shared = mmap(NULL, sizeof *calls, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared != MAP_FAILED) calls = shared;
}

__attribute__((destructor)) static void end(void) {
    const long count = calls ? *calls : 0;
    calls = NULL;
    FILE *file = getenv("FAIL_COUNT") ? fopen(getenv("FAIL_COUNT"), "w") : NULL;
    if (!file) return;
    fprintf(file, "%ld", count);
    fclose(file);
}

static int is_chosen(const char *wanted) {
    return calls && strcmp(kind, wanted) == 0 && __atomic_add_fetch(calls, 1, __ATOMIC_SEQ_CST) == fail_at;
}

static int fails(const char *wanted) {
    if (!is_chosen(wanted)) return 0;
    errno = strcmp(wanted, "memory") == 0 ? ENOMEM : EIO;
    return 1;
}

void *malloc(size_t size) {
    return fails("memory") ? NULL : __libc_malloc(size);
}

void *calloc(size_t count, size_t size) {
    return fails("memory") ? NULL : __libc_calloc(count, size);
}

void *realloc(void *block, size_t size) {
    return fails("memory") ? NULL : __libc_realloc(block, size);
}

/* Defines a file call that fails with `failure` or is followed by the signal. */
#define FILE_CALL(type, name, parameters, arguments, failure)                                                          \
    type name parameters {                                                                                             \
        type(*real) parameters = (type(*) parameters)dlsym(RTLD_NEXT, #name);                                          \
        if (fails("file")) return failure;                                                                             \
        type result = real arguments;                                                                                  \
        if (is_chosen("signal")) raise(SIGTERM);                                                                       \
        return result;                                                                                                 \
    }

/* Gives what a stream's call gives that failed, and the stream the mark of an error. */
#define MARKED(stream, value) ((stream)->_flags |= 0x20, (value))

FILE_CALL(FILE *, fopen, (const char *path, const char *mode), (path, mode), NULL)
FILE_CALL(FILE *, fopen64, (const char *path, const char *mode), (path, mode), NULL)
FILE_CALL(FILE *, fdopen, (int descriptor, const char *mode), (descriptor, mode), NULL)
FILE_CALL(size_t, fread, (void *to, size_t size, size_t count, FILE *file), (to, size, count, file), MARKED(file, 0))
FILE_CALL(size_t, fwrite, (const void *from, size_t size, size_t count, FILE *file), (from, size, count, file),
          MARKED(file, 0))
FILE_CALL(int, fflush, (FILE * file), (file), file ? MARKED(file, EOF) : EOF)
FILE_CALL(int, mkostemp, (char *path, int flags), (path, flags), -1)
FILE_CALL(int, mkostemp64, (char *path, int flags), (path, flags), -1)
FILE_CALL(int, rename, (const char *from, const char *to), (from, to), -1)
