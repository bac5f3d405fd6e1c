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

/// A number that is computed from other records.
template <class T, T (*find)(const void*)>
class ComputedField {
public:
    operator T() const { return find(this); }
};

} // namespace fluvane
