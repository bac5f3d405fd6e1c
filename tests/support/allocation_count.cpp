// Operators that count, in front of those of the C library.
#include "support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define FLUVANE_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define FLUVANE_SANITIZED 1
#endif
#endif

namespace {

std::atomic<std::int64_t> count{0};

} // namespace

#ifndef FLUVANE_SANITIZED
void* operator new(std::size_t size) {
    ++count;
    if (void* const memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#endif

std::int64_t fluvane::support::allocationCount() {
    return count;
}

bool fluvane::support::countsAllocations() {
#ifdef FLUVANE_SANITIZED
    return false;
#else
    return true;
#endif
}
