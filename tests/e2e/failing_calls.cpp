// Preloaded into the program: makes one of its calls to the disk fail, or takes a file away just
// before it is opened. The environment says which:
//
//     FAILING_CALL=N        the N-th call fails as on a full disk, and so do those behind it
//     FAILING_ONCE=1        only the N-th
//     FAILING_COUNT=FILE    at the end, the number of calls goes there
//     FAILING_VANISH=PATH   that file is removed when it is about to be opened
//     FAILING_CREATED=FILE  what is created goes there, a line each: flags, a blank, the path
//
// Counted are the calls that may need room: creating a file, writing, syncing, renaming.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

long calls = 0;

// The call behind the one of the same name here.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

long Number(const char* name) {
  const char* const text = std::getenv(name);
  return text != nullptr ? std::atol(text) : 0;
}

// Counts a call; true when it is to fail.
bool HasToFail() {
  ++calls;
  const long failing = Number("FAILING_CALL");
  if (failing == 0 || calls < failing) return false;
  if (calls > failing && Number("FAILING_ONCE") != 0) return false;
  errno = ENOSPC;
  return true;
}

void TakeAway(const char* path) {
  const char* const vanishing = std::getenv("FAILING_VANISH");
  if (vanishing != nullptr && std::strcmp(path, vanishing) == 0) unlink(path);
}

void TellCreated(const char* path, int flags) {
  const char* const list = std::getenv("FAILING_CREATED");
  if (list == nullptr) return;
  if (std::FILE* const file = std::fopen(list, "a")) {
    std::fprintf(file, "%d %s\n", flags, path);
    std::fclose(file);
  }
}

__attribute__((destructor)) void TellCount() {
  const char* const path = std::getenv("FAILING_COUNT");
  if (path == nullptr) return;
  if (std::FILE* const file = std::fopen(path, "w")) {
    std::fprintf(file, "%ld\n", calls);
    std::fclose(file);
  }
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list more;
    va_start(more, flags);
    mode = va_arg(more, mode_t);
    va_end(more);
    TellCreated(path, flags);
    if (HasToFail()) return -1;
  }
  TakeAway(path);
  return Real<int(const char*, int, ...)>("open")(path, flags, mode);
}

// What a fortified program calls when it creates nothing.
int __open_2(const char* path, int flags) {  // NOLINT
  TakeAway(path);
  return Real<int(const char*, int)>("__open_2")(path, flags);
}

ssize_t write(int file, const void* bytes, size_t size) {
  if (HasToFail()) return -1;
  return Real<ssize_t(int, const void*, size_t)>("write")(file, bytes, size);
}

int fsync(int file) {
  if (HasToFail()) return -1;
  return Real<int(int)>("fsync")(file);
}

int rename(const char* from, const char* to) noexcept {
  if (HasToFail()) return -1;
  return Real<int(const char*, const char*)>("rename")(from, to);
}

}  // extern "C"
