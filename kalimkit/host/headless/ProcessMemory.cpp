#include "kalimkit/host/headless/ProcessMemory.h"

#if defined(__linux__)
#include <cstdio>
#include <memory>
#endif

namespace kalim {

#if defined(__linux__)

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Finds the figure behind a label in one of the kernel's tables of "Label:  123 kB".
std::optional<double> kilobytesFrom(const char* path, const char* format) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "r"));
    char line[256];
    while (file && std::fgets(line, sizeof line, file.get())) {
        unsigned long kilobytes = 0;
        if (std::sscanf(line, format, &kilobytes) == 1) return kilobytes * 1024.0;
    }
    return std::nullopt;
}

}  // namespace

std::optional<double> residentMemory() {
    return kilobytesFrom("/proc/self/status", "VmRSS: %lu kB");
}

std::optional<double> freeMemory() {
    return kilobytesFrom("/proc/meminfo", "MemFree: %lu kB");
}

#else

std::optional<double> residentMemory() {
    return std::nullopt;
}

std::optional<double> freeMemory() {
    return std::nullopt;
}

#endif

}  // namespace kalim
