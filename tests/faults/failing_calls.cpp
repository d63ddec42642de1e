/// A library to be preloaded: it makes one call of a program fail, or that one and all that follow.
///
/// Counted are the calls of one kind that the program makes from the start of `main` on, by any of
/// its threads; programs that it starts are left alone. Set by the environment:
///   OVIK_FAULT_CALL     allocation, open, read, write, fsync, close or rename
///   OVIK_FAULT_AT       number of the first call that fails, from 1; 0: none
///   OVIK_FAULT_EARLY    if set, calls count from before `main` on, where globals are built
///   OVIK_FAULT_ONWARDS  if set, all that follow fail as well
///   OVIK_FAULT_ERROR    the error number; 0: a write takes one byte only
///   OVIK_FAULT_COUNT    file that gets the number of calls when the program exits
///
/// What the C library calls within itself, as `printf` does `write`, is out of reach.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

enum Call { kAllocation, kOpen, kRead, kWrite, kFsync, kClose, kRename, kNone };

constexpr const char* kNames[] = {
    "allocation", "open", "read", "write", "fsync", "close", "rename"};

Call failing_call = kNone;
long first_failure = 0;
bool onwards = false;
int error_number = 0;
std::atomic<long> calls = 0;

/// Counts a call. Whether it is to fail; `errno` is then set.
bool fails(Call call) {
    if (call != failing_call) {
        return false;
    }
    const long number = ++calls;
    if (first_failure == 0 || number < first_failure || (!onwards && number > first_failure)) {
        return false;
    }
    errno = error_number;
    return true;
}

/// The function of this name that would be called without this library.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

long number_from(const char* variable) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? 0 : std::strtol(text, nullptr, 10);
}

int (*main_of_program)(int, char**, char**) = nullptr;

void begin_with_faults() {
    const char* const call = std::getenv("OVIK_FAULT_CALL");
    first_failure = number_from("OVIK_FAULT_AT");
    onwards = std::getenv("OVIK_FAULT_ONWARDS") != nullptr;
    error_number = static_cast<int>(number_from("OVIK_FAULT_ERROR"));
    unsetenv("LD_PRELOAD");
    for (int kind = 0; call != nullptr && kind < kNone; ++kind) {
        if (std::strcmp(call, kNames[kind]) == 0) {
            failing_call = static_cast<Call>(kind);
        }
    }
}

int main_with_faults(int argc, char** argv, char** environment) {
    begin_with_faults();
    return main_of_program(argc, argv, environment);
}

__attribute__((destructor)) void note_calls() {
    failing_call = kNone;
    const char* const path = std::getenv("OVIK_FAULT_COUNT");
    std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "w");
    if (file != nullptr) {
        std::fprintf(file, "%ld\n", calls.load());
        std::fclose(file);
    }
}

int open_next(const char* name, const char* path, int flags, mode_t mode) {
    return fails(kOpen) ? -1 : next<int(const char*, int, ...)>(name)(path, flags, mode);
}

std::FILE* fopen_next(const char* name, const char* path, const char* mode) {
    return fails(kOpen) ? nullptr : next<std::FILE*(const char*, const char*)>(name)(path, mode);
}

mode_t mode_of(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int __libc_start_main(int (*main)(int, char**, char**),
                      int argc,
                      char** argv,
                      void (*init)(),
                      void (*fini)(),
                      void (*rtld_fini)(),
                      void* stack_end) {
    auto* const start = next<decltype(__libc_start_main)>("__libc_start_main");
    if (std::getenv("OVIK_FAULT_EARLY") != nullptr) {
        begin_with_faults();
        return start(main, argc, argv, init, fini, rtld_fini, stack_end);
    }
    main_of_program = main;
    return start(main_with_faults, argc, argv, init, fini, rtld_fini, stack_end);
}

void* malloc(size_t size) {
    return fails(kAllocation) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return fails(kAllocation) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    return fails(kAllocation) ? nullptr : __libc_realloc(block, size);
}

void* memalign(size_t alignment, size_t size) {
    return fails(kAllocation) ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    void* const fresh = memalign(alignment, size);
    if (fresh == nullptr) {
        return ENOMEM;
    }
    *block = fresh;
    return 0;
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return open_next("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return open_next("open64", path, flags, mode);
}

std::FILE* fopen(const char* path, const char* mode) {
    return fopen_next("fopen", path, mode);
}

std::FILE* fopen64(const char* path, const char* mode) {
    return fopen_next("fopen64", path, mode);
}

ssize_t read(int descriptor, void* bytes, size_t count) {
    return fails(kRead) ? -1 : next<decltype(read)>("read")(descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    size_t taken = count;
    if (fails(kWrite)) {
        if (error_number != 0 || count == 0) {
            return -1;
        }
        taken = 1;
    }
    return next<decltype(write)>("write")(descriptor, bytes, taken);
}

int fsync(int descriptor) {
    return fails(kFsync) ? -1 : next<decltype(fsync)>("fsync")(descriptor);
}

/// The descriptor is closed even then, as Linux does it.
int close(int descriptor) {
    const bool is_failure = fails(kClose);
    const int error = errno;
    const int result = next<decltype(close)>("close")(descriptor);
    if (!is_failure) {
        return result;
    }
    errno = error;
    return -1;
}

int rename(const char* from, const char* to) {
    return fails(kRename) ? -1 : next<decltype(rename)>("rename")(from, to);
}
}
