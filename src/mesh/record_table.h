// The records of one kind, in the order of their numbers or in another one.
#pragma once

#include "mesh/huge_array.h"
#include "mesh/prefetch_bytes.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace fluvane {

/// How the geometry passes store a mesh: cells along a curve through space where the file numbers them so
/// badly that a step would wait for memory; always; or never. No number and no result depends on it.
enum class Storage { automatic, alongCurve, asNumbered };

/// The slot of each number where records are not stored in the order of their numbers, and back.
struct StorageOrder {
    std::vector<std::int32_t> slotOf;
    std::vector<std::int32_t> numberAt;

    bool asNumbered() const { return slotOf.empty(); }
    std::size_t slot(std::size_t number) const {
        return asNumbered() ? number : static_cast<std::size_t>(slotOf[number]);
    }
    std::size_t number(std::size_t slot) const {
        return asNumbered() ? slot : static_cast<std::size_t>(numberAt[slot]);
    }
    std::size_t bytes() const { return (slotOf.size() + numberAt.size()) * sizeof(std::int32_t); }
};

/// A fixed number of records. Numbers count as the mesh file does; the slot
/// of a record is where it lies, which is at its number unless another order was set. Move only.
template <class Record>
class RecordTable {
    /// Walks in the order of the numbers.
    template <class Table, class Value>
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Record;
        using difference_type = std::ptrdiff_t;
        using pointer = Value*;
        using reference = Value&;

        Iterator() = default;
        Iterator(Table* table, std::size_t number) : m_table(table), m_number(number) {}
        Value& operator*() const { return (*m_table)[m_number]; }
        Value* operator->() const { return &(*m_table)[m_number]; }
        Iterator& operator++() {
            ++m_number;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++m_number;
            return before;
        }
        bool operator==(const Iterator&) const = default;

    private:
        Table* m_table = nullptr;
        std::size_t m_number = 0;
    };

public:
    RecordTable() = default;
    explicit RecordTable(std::size_t size) : RecordTable(HugeArray<Record>(size)) {}
    RecordTable(HugeArray<Record>&& records) : m_records(std::move(records)) {}
    /// New records, stored in the given order.
    RecordTable(std::size_t size, StorageOrder order) : RecordTable(size) { m_order = std::move(order); }

    Record& operator[](std::size_t number) { return m_records[m_order.slot(number)]; }
    const Record& operator[](std::size_t number) const { return m_records[m_order.slot(number)]; }
    auto begin() { return Iterator<RecordTable, Record>(this, 0); }
    auto end() { return Iterator<RecordTable, Record>(this, size()); }
    auto begin() const { return Iterator<const RecordTable, const Record>(this, 0); }
    auto end() const { return Iterator<const RecordTable, const Record>(this, size()); }
    std::size_t size() const { return m_records.size(); }
    bool empty() const { return m_records.empty(); }

    /// The records as they lie.
    Record* data() { return m_records.data(); }
    const Record* data() const { return m_records.data(); }
    const StorageOrder& order() const { return m_order; }
    /// The slot of the record that has this address or holds it.
    std::size_t slotOf(const void* part) const {
        return static_cast<std::size_t>(static_cast<const char*>(part) -
                                        reinterpret_cast<const char*>(m_records.data())) /
               sizeof(Record);
    }

    /// The same records stored in another order.
    RecordTable inOrder(StorageOrder order) const {
        RecordTable moved;
        moved.m_records = HugeArray<Record>(size(), [&](std::size_t slot) -> const Record& {
            constexpr std::size_t ahead = 16;
            if (slot + ahead < size())
                prefetchBytes(&(*this)[order.number(slot + ahead)], sizeof(Record));
            return (*this)[order.number(slot)];
        });
        moved.m_order = std::move(order);
        return moved;
    }

    /// Bytes of the records and of the order, mapped or not.
    std::size_t bytes() const { return m_records.bytes() + m_order.bytes(); }

private:
    HugeArray<Record> m_records;
    StorageOrder m_order;
};

} // namespace fluvane
