// A fixed-size array for the solver's large tables: aligned, on huge pages where the system gives them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace fluvane {

/// Whether bytes of zero are a value-initialised T, so that an array of it may stay memory that nobody
/// touched.
template <class T>
constexpr bool isZeroBytes = std::is_arithmetic_v<T>;

/// Owns `size` value-initialised elements. Those that are zero bytes are left to the system, which maps and
/// clears a page when it is first touched: what no loop uses takes no memory, and what one uses lies near the
/// thread that first worked on it. Others are constructed by the OpenMP threads in contiguous shares, to the
/// same end. Allocation failure throws std::bad_alloc. Move only.
template <class T>
class HugeArray {
public:
    HugeArray() = default;
    explicit HugeArray(std::size_t size) : m_size(size) {
        allocate();
        if constexpr (!isZeroBytes<T>)
            construct([](T* element, std::size_t) { std::construct_at(element); });
    }
    /// Element i is a copy of source(i).
    template <class Source>
    HugeArray(std::size_t size, const Source& source) : m_size(size) {
        allocate();
        construct([&source](T* element, std::size_t i) { std::construct_at(element, source(i)); });
    }
    HugeArray(HugeArray&& other) noexcept { swap(other); }
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
        giveBack();
    }

    /// Keeps the first `size` elements. Whole huge pages behind them go back to the system.
    void shrink(std::size_t size) {
        if (size >= m_size)
            return;
        std::destroy_n(m_data + size, m_size - size);
        m_size = size;
        giveBackTail();
    }

    T& operator[](std::size_t i) { return m_data[i]; }
    const T& operator[](std::size_t i) const { return m_data[i]; }
    T* data() { return m_data; }
    const T* data() const { return m_data; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_size; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_size; }
    std::size_t size() const { return m_size; }
    /// Bytes of the elements, mapped or not.
    std::size_t bytes() const { return m_size * sizeof(T); }
    bool empty() const { return m_size == 0; }

private:
    void swap(HugeArray& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_block, other.m_block);
        std::swap(m_mapped, other.m_mapped);
    }

    template <class Maker>
    void construct(const Maker& make) {
        T* const data = m_data;
        const auto count = static_cast<std::ptrdiff_t>(m_size);
#pragma omp parallel for schedule(static) if (bytes() >= hugePage)
        for (std::ptrdiff_t i = 0; i < count; ++i)
            make(data + i, static_cast<std::size_t>(i));
    }

    /// Large arrays are mapped by themselves: a heap that has free memory clears it at once instead. Only
    /// whole huge pages are asked for: a last one would map more than the array.
    void allocate() {
        if (m_size == 0)
            return;
        if (m_size > SIZE_MAX / 2 / sizeof(T))
            throw std::bad_alloc();
        const bool mapped = canMap && bytes() >= hugePage;
        const std::size_t alignment = mapped ? hugePage : std::size_t{64};
        std::size_t space = bytes() + alignment;
        m_block = takeCleared(space, mapped);
        m_mapped = mapped ? space : 0;
        void* first = m_block;
        m_data = static_cast<T*>(std::align(alignment, bytes(), first, space));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
        if (mapped)
            madvise(m_data, bytes() / hugePage * hugePage, MADV_HUGEPAGE);
#endif
    }

#if defined(__linux__)
    static constexpr bool canMap = true;
    static void* takeCleared(std::size_t space, bool mapped) {
        void* const block =
            mapped ? mmap(nullptr, space, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                   : std::calloc(space, 1);
        if (block == MAP_FAILED || !block)
            throw std::bad_alloc();
        return block;
    }
    void giveBack() const {
        if (m_mapped > 0)
            munmap(m_block, m_mapped);
        else
            std::free(m_block);
    }
    void giveBackTail() {
        if (m_mapped == 0)
            return;
        const auto first =
            static_cast<std::size_t>(reinterpret_cast<char*>(m_data) - static_cast<char*>(m_block));
        const std::size_t kept = first + (bytes() + hugePage - 1) / hugePage * hugePage;
        if (kept < m_mapped && munmap(static_cast<char*>(m_block) + kept, m_mapped - kept) == 0)
            m_mapped = kept;
    }
#else
    static constexpr bool canMap = false;
    static void* takeCleared(std::size_t space, bool) {
        void* const block = std::calloc(space, 1);
        if (!block)
            throw std::bad_alloc();
        return block;
    }
    void giveBack() const {
        std::free(m_block);
    }
    void giveBackTail() {}
#endif

    static constexpr std::size_t hugePage = std::size_t{2} << 20;
    void* m_block = nullptr;  ///< what the allocator gave; m_data is its first aligned address
    std::size_t m_mapped = 0; ///< bytes of the block that are mapped by themselves, 0 for one from the heap
    T* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace fluvane
