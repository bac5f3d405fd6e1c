// Members of records that hold nothing: they find what they name from where the record lies in the mesh.
#pragma once

namespace fluvane {

/// A pointer member that takes no room: the record's slice of a long array of the mesh. `find` gets the
/// address of the member. A copy of a record outside the mesh has no slice.
template <class T, T* (*find)(const void*)>
class SliceField {
public:
    T* data() const { return find(this); }
    operator T*() const { return find(this); }
};

/// A number that lies in an array of its own, for those that are rarely set. `find` gets the address of the
/// member and gives that of the number; null for a record outside the mesh, whose number is always T{}.
template <class T, T* (*find)(const void*)>
class ApartField {
public:
    ApartField() = default;
    ApartField(const ApartField&) = default;
    ApartField& operator=(const ApartField& other) { return *this = static_cast<T>(other); }
    ApartField& operator=(T value) {
        if (T* const number = find(this))
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
