// A fixed-size array for the solver's large tables: aligned, on huge pages where the system gives them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace fluvane {

/// Owns `size` value-initialised elements. Those of a large array are constructed by the OpenMP threads in
/// contiguous shares, so that each page is first touched by the thread that later works on that share.
/// Allocation failure throws std::bad_alloc. Move only.
template <class T>
class HugeArray {
public:
    HugeArray() = default;
    explicit HugeArray(std::size_t size) : m_size(size) {
        if (size == 0)
            return;
        if (size > SIZE_MAX / sizeof(T))
            throw std::bad_alloc();
        const std::size_t bytes = size * sizeof(T);
        m_alignment = bytes >= hugePage ? hugePage : std::size_t{64};
        m_data = static_cast<T*>(::operator new(bytes, std::align_val_t(m_alignment)));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
        if (m_alignment == hugePage)
            madvise(m_data, bytes, MADV_HUGEPAGE);
#endif
        T* const data = m_data;
        const auto count = static_cast<std::ptrdiff_t>(size);
#pragma omp parallel for schedule(static) if (bytes >= hugePage)
        for (std::ptrdiff_t i = 0; i < count; ++i)
            std::construct_at(data + i);
    }
    HugeArray(HugeArray&& other) noexcept {
        swap(other);
    }
    HugeArray& operator=(HugeArray&& other) noexcept {
        HugeArray(std::move(other)).swap(*this);
        return *this;
    }
    HugeArray(const HugeArray&) = delete;
    HugeArray& operator=(const HugeArray&) = delete;
    ~HugeArray() {
        if (!m_data)
            return;
        std::destroy_n(m_data, m_size);
        ::operator delete(m_data, std::align_val_t(m_alignment));
    }

    T& operator[](std::size_t i) {
        return m_data[i];
    }
    const T& operator[](std::size_t i) const {
        return m_data[i];
    }
    T* data() {
        return m_data;
    }
    const T* data() const {
        return m_data;
    }
    T* begin() {
        return m_data;
    }
    T* end() {
        return m_data + m_size;
    }
    const T* begin() const {
        return m_data;
    }
    const T* end() const {
        return m_data + m_size;
    }
    std::size_t size() const {
        return m_size;
    }
    bool empty() const {
        return m_size == 0;
    }

private:
    void swap(HugeArray& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_alignment, other.m_alignment);
    }

    static constexpr std::size_t hugePage = std::size_t{2} << 20;
    T* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_alignment = 64;
};

} // namespace fluvane
