// Members of records that hold nothing: they find what they name from where the record lies in the mesh.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace fluvane {

/// A pointer member that takes no room: the record's slice of a long array of the mesh. `find` gets the
/// address of the member. A copy of a record outside the mesh has no slice.
template <class T, T* (*find)(const void*)>
class SliceField {
public:
    T* data() const { return find(this); }
    operator T*() const { return find(this); }
};

/// A number that lies in an array of its own instead of in the record; reads and writes like a member.
template <class T, T& (*find)(const void*)>
class ApartField {
public:
    ApartField() = default;
    ApartField(const ApartField&) = default;
    ApartField& operator=(const ApartField& other) {
        find(this) = find(&other);
        return *this;
    }
    T& operator=(const T& value) { return find(this) = value; }
    operator T&() { return find(this); }
    operator const T&() const { return find(this); }
};

/// A number that is computed from other records.
template <class T, T (*find)(const void*)>
class ComputedField {
public:
    operator T() const { return find(this); }
};

/// A short list of indices that lies in an array of its own instead of in the record.
template <std::size_t N, std::array<std::int32_t, N>& (*find)(const void*)>
class ApartIndices {
public:
    using Indices = std::array<std::int32_t, N>;

    ApartIndices() = default;
    ApartIndices(const ApartIndices&) = default;
    ApartIndices& operator=(const ApartIndices& other) {
        find(this) = find(&other);
        return *this;
    }
    Indices& operator=(const Indices& value) { return find(this) = value; }
    operator Indices&() { return find(this); }
    operator const Indices&() const { return find(this); }

    std::int32_t& operator[](std::size_t i) { return find(this)[i]; }
    std::int32_t operator[](std::size_t i) const { return find(this)[i]; }
    std::int32_t* begin() { return find(this).data(); }
    std::int32_t* end() { return begin() + N; }
    const std::int32_t* begin() const { return find(this).data(); }
    const std::int32_t* end() const { return begin() + N; }
    std::int32_t* data() { return begin(); }
    const std::int32_t* data() const { return begin(); }
    static constexpr std::size_t size() { return N; }

    friend bool operator==(const ApartIndices& a, const Indices& b) { return find(&a) == b; }
};

} // namespace fluvane
