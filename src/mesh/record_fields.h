// Members of records that hold nothing: they find what they name from where the record lies in the mesh.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace fluvane {

/// A pointer member that takes no room: the record's slice of a long array of the mesh. `find` gets the
/// address of the member. A copy of a record outside the mesh has no slice.
template <class T, T* (*find)(const void*)>
class SliceField {
public:
    T* data() const { return find(this); }
    operator T*() const { return find(this); }
};

/// An array member of N numbers that takes no room: the record's part of a long array of the mesh.
template <class T, std::size_t N, T* (*find)(const void*)>
class ArrayField {
public:
    ArrayField& operator=(const std::array<T, N>& values) {
        std::copy(values.begin(), values.end(), data());
        return *this;
    }
    T* data() const { return find(this); }
    T* begin() const { return data(); }
    T* end() const { return data() + N; }
    T& operator[](std::size_t i) const { return data()[i]; }
    static constexpr std::size_t size() { return N; }
    friend bool operator==(const ArrayField& a, const std::array<T, N>& b) {
        return std::equal(b.begin(), b.end(), a.begin());
    }
};

/// A number that lies in an array of its own, for those that are rarely set. `find` gets the address of the
/// member and gives that of the number, and `make` does so after making an array that is not there yet; null
/// while there is none, and for a record outside the mesh: the number is then T{}.
template <class T, T* (*find)(const void*), T* (*make)(const void*)>
class ApartField {
public:
    ApartField() = default;
    ApartField(const ApartField&) = default;
    ApartField& operator=(const ApartField& other) { return *this = static_cast<T>(other); }
    ApartField& operator=(T value) {
        if (T* const number = value == T{} ? find(this) : make(this))
            *number = value;
        return *this;
    }
    operator T() const {
        const T* const number = find(this);
        return number ? *number : T{};
    }
};

/// A number that is computed from other records.
template <class T, T (*find)(const void*)>
class ComputedField {
public:
    operator T() const { return find(this); }
};

} // namespace fluvane
