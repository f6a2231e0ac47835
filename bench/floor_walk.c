/* The floor for a scan: the same parallel walk as the scanner (one fts walk per top-level folder,
 * one thread per core pulling folders from a shared index) that only counts files and allocated
 * bytes. Whatever a scan costs above this is tree building, reporting and start-up.
 *
 *   bench_floor_walk FOLDER    prints "files N bytes B"
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <fts.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

struct walk
{
    char **folders;
    size_t count;
    atomic_size_t next;
    pthread_mutex_t lock;
    int64_t files;
    uint64_t bytes;
};

static uint64_t allocated(const struct stat *st)
{
    return st->st_blocks > 0 ? (uint64_t)st->st_blocks * 512 : 0;
}

static void walk_folder(char *path, int64_t *files, uint64_t *bytes)
{
    char *roots[] = {path, NULL};
    FTS *fts = fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR | FTS_XDEV, NULL);
    if (!fts)
        return;
    FTSENT *e;
    while ((e = fts_read(fts)) != NULL) {
        switch (e->fts_info) {
        case FTS_F:
        case FTS_SL:
        case FTS_SLNONE:
        case FTS_DEFAULT:
            if (e->fts_statp) {
                ++*files;
                *bytes += allocated(e->fts_statp);
            }
            break;
        default:
            break;
        }
    }
    fts_close(fts);
}

static void *worker(void *arg)
{
    struct walk *w = arg;
    int64_t files = 0;
    uint64_t bytes = 0;
    for (size_t i; (i = atomic_fetch_add(&w->next, 1)) < w->count;)
        walk_folder(w->folders[i], &files, &bytes);
    pthread_mutex_lock(&w->lock);
    w->files += files;
    w->bytes += bytes;
    pthread_mutex_unlock(&w->lock);
    return NULL;
}

static char *join(const char *folder, const char *name)
{
    const size_t n = strlen(folder);
    const int slash = !(n > 0 && folder[n - 1] == '/');
    char *p = malloc(n + slash + strlen(name) + 1);
    if (!p) {
        perror("bench_floor_walk");
        exit(1);
    }
    sprintf(p, "%s%s%s", folder, slash ? "/" : "", name);
    return p;
}

int main(int argc, char *argv[])
{
    if (argc != 2) {
        fprintf(stderr, "usage: bench_floor_walk FOLDER\n");
        return 2;
    }
    DIR *dir = opendir(argv[1]);
    if (!dir) {
        perror(argv[1]);
        return 2;
    }

    struct walk w = {.lock = PTHREAD_MUTEX_INITIALIZER};
    size_t capacity = 0;
    struct dirent *d;
    while ((d = readdir(dir)) != NULL) {
        if (strcmp(d->d_name, ".") == 0 || strcmp(d->d_name, "..") == 0)
            continue;
        char *path = join(argv[1], d->d_name);
        struct stat st;
        if (lstat(path, &st) != 0) {
            free(path);
        } else if (S_ISDIR(st.st_mode)) {
            if (w.count == capacity) {
                capacity = capacity ? capacity * 2 : 64;
                char **grown = realloc(w.folders, capacity * sizeof *grown);
                if (!grown) {
                    perror("bench_floor_walk");
                    return 1;
                }
                w.folders = grown;
            }
            w.folders[w.count++] = path;
        } else {
            ++w.files;
            w.bytes += allocated(&st);
            free(path);
        }
    }
    closedir(dir);

    long cores = sysconf(_SC_NPROCESSORS_ONLN);
    if (cores < 1)
        cores = 1;
    pthread_t threads[256];
    const size_t n = (size_t)(cores < 256 ? cores : 256);
    size_t started = 0;
    for (; started < n; ++started) {
        if (pthread_create(&threads[started], NULL, worker, &w) != 0)
            break;
    }
    if (started == 0)
        worker(&w);
    for (size_t i = 0; i < started; ++i)
        pthread_join(threads[i], NULL);

    printf("files %lld bytes %llu\n", (long long)w.files, (unsigned long long)w.bytes);
    for (size_t i = 0; i < w.count; ++i)
        free(w.folders[i]);
    free(w.folders);
    return 0;
}
