// The records of one kind: what the loops of a step read lies in the records, the rest beside them.
#pragma once

#include "mesh/huge_array.h"

#include <cstddef>
#include <utility>

namespace fluvane {

/// What a kind of record keeps outside the record, in arrays of the same order; nothing unless specialised.
template <class Record>
struct Apart {
    Apart() = default;
    explicit Apart(std::size_t) {}
    std::size_t bytes() const { return 0; }
};

/// A fixed number of records and their fields that lie apart. Move only.
template <class Record>
class RecordTable {
public:
    RecordTable() = default;
    explicit RecordTable(std::size_t size) : RecordTable(HugeArray<Record>(size)) {}
    RecordTable(HugeArray<Record>&& records) : apart(records.size()), m_records(std::move(records)) {}

    Record& operator[](std::size_t i) { return m_records[i]; }
    const Record& operator[](std::size_t i) const { return m_records[i]; }
    Record* data() { return m_records.data(); }
    const Record* data() const { return m_records.data(); }
    Record* begin() { return m_records.begin(); }
    Record* end() { return m_records.end(); }
    const Record* begin() const { return m_records.begin(); }
    const Record* end() const { return m_records.end(); }
    std::size_t size() const { return m_records.size(); }
    bool empty() const { return m_records.empty(); }

    /// Bytes of the records and of what lies apart, mapped or not.
    std::size_t bytes() const { return m_records.bytes() + apart.bytes(); }

    /// Where the record lies that has this address or holds it.
    std::size_t slotOf(const void* part) const {
        return static_cast<std::size_t>(static_cast<const char*>(part) -
                                        reinterpret_cast<const char*>(m_records.data())) /
               sizeof(Record);
    }

    Apart<Record> apart;

private:
    HugeArray<Record> m_records;
};

} // namespace fluvane
