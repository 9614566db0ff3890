#include "tests/faults/Faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <new>

namespace {

long allocationCount = 0;
long failingAllocation = 0;
long fileCount = 0;
long failingFile = 0;
int fileError = 0;

bool failsHere() {
    if (++fileCount != failingFile) return false;
    errno = fileError;
    return true;
}

template <typename Function>
Function next(const char* name, Function /*sameType*/) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

void* allocate(std::size_t size, std::size_t alignment = 0) noexcept {
    if (++allocationCount == failingAllocation) return nullptr;
    if (alignment == 0) return std::malloc(size == 0 ? 1 : size);
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* allocateOrThrow(std::size_t size, std::size_t alignment = 0) {
    void* const memory = allocate(size, alignment);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

namespace kalim::test {

void failAllocation(long number) {
    allocationCount = 0;
    failingAllocation = number;
}

void failFileCall(long number, int error) {
    fileCount = 0;
    failingFile = number;
    fileError = error;
}

long allocations() {
    return allocationCount;
}

long fileCalls() {
    return fileCount;
}

}  // namespace kalim::test

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

// The program's own take the place of the system's, in libraries as well.
#define KALIM_CALL extern "C" __attribute__((visibility("default")))

#define KALIM_OPEN(name)                                                               \
    KALIM_CALL int name(const char* path, int flags, ...) {                            \
        mode_t mode = 0;                                                               \
        if ((flags & (O_CREAT | O_TMPFILE)) != 0) {                                    \
            std::va_list rest;                                                         \
            va_start(rest, flags);                                                     \
            mode = va_arg(rest, mode_t);                                               \
            va_end(rest);                                                              \
        }                                                                              \
        if ((flags & O_ACCMODE) != O_RDONLY && failsHere()) return -1;                 \
        static const auto real = next<int (*)(const char*, int, ...)>(#name, nullptr); \
        return real(path, flags, mode);                                                \
    }
KALIM_OPEN(open)
KALIM_OPEN(open64)

KALIM_CALL ssize_t write(int file, const void* bytes, size_t count) {
    // Not what goes to a terminal or a pipe of the tests.
    if (file > STDERR_FILENO && failsHere()) return -1;
    static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write", nullptr);
    return real(file, bytes, count);
}
KALIM_CALL ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
    if (failsHere()) return -1;
    static const auto real =
        next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64", nullptr);
    return real(file, bytes, count, offset);
}
KALIM_CALL int fsync(int file) {
    static const auto real = next<int (*)(int)>("fsync", nullptr);
    return failsHere() ? -1 : real(file);
}
KALIM_CALL int fdatasync(int file) {
    static const auto real = next<int (*)(int)>("fdatasync", nullptr);
    return failsHere() ? -1 : real(file);
}
KALIM_CALL int ftruncate64(int file, off64_t size) noexcept {
    static const auto real = next<int (*)(int, off64_t)>("ftruncate64", nullptr);
    return failsHere() ? -1 : real(file, size);
}
KALIM_CALL int rename(const char* from, const char* to) noexcept {
    static const auto real = next<int (*)(const char*, const char*)>("rename", nullptr);
    return failsHere() ? -1 : real(from, to);
}
KALIM_CALL int link(const char* from, const char* to) noexcept {
    static const auto real = next<int (*)(const char*, const char*)>("link", nullptr);
    return failsHere() ? -1 : real(from, to);
}
KALIM_CALL int linkat(int fromFolder, const char* from, int toFolder, const char* to,
                      int flags) noexcept {
    static const auto real =
        next<int (*)(int, const char*, int, const char*, int)>("linkat", nullptr);
    return failsHere() ? -1 : real(fromFolder, from, toFolder, to, flags);
}
KALIM_CALL int mkdir(const char* path, mode_t mode) noexcept {
    static const auto real = next<int (*)(const char*, mode_t)>("mkdir", nullptr);
    return failsHere() ? -1 : real(path, mode);
}
