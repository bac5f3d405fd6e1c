// Lets memory run out in tests.
#pragma once

#include <QFile>
#include <QString>

#include <gtest/gtest.h>

#include <cstddef>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fluvane::support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool addressSpaceIsOurs = false; // the sanitizers map terabytes for themselves
#else
inline constexpr bool addressSpaceIsOurs = true;
#endif

inline std::size_t mappedBytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readLine().split(' ').front().toULongLong() * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// While it lives the process may map only so much more.
class SpareMemory {
public:
    explicit SpareMemory(std::size_t bytes) {
        mallopt(M_MMAP_THRESHOLD, 1 << 17); // fixed: what one test gave back, another does not get
        malloc_trim(0);
        EXPECT_EQ(getrlimit(RLIMIT_AS, &m_before), 0);
        rlimit limited = m_before;
        limited.rlim_cur = mappedBytes() + bytes;
        EXPECT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
    }
    ~SpareMemory() { setrlimit(RLIMIT_AS, &m_before); }
    SpareMemory(const SpareMemory&) = delete;
    SpareMemory& operator=(const SpareMemory&) = delete;

private:
    rlimit m_before{};
};

} // namespace fluvane::support
