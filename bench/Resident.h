#pragma once

#include <cstdio>

#include <unistd.h>

/// What the process has in memory now.
namespace Resident {
[[nodiscard]] inline long kilobytes()
{
    long all = 0;
    long resident = 0;
    if (std::FILE *file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &all, &resident) != 2) {
            resident = 0;
        }
        std::fclose(file);
    }
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}
} // namespace Resident
