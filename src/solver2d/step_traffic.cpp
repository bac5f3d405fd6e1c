// Counts, loop by loop, what the kernels read and write.
#include "solver2d/step_traffic.h"

#include "mesh/mesh.h"
#include "solver2d/step_constants.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <vector>

namespace fluvane {

namespace {

constexpr std::size_t lineSize = 64;
constexpr std::int64_t numberSize = sizeof(double);

/// The cache lines of a record that hold the fields touched so far.
template <class Record>
class Lines {
public:
    explicit Lines(const Record& record) : m_record(&record) {}

    template <class... Fields>
    Lines& touch(const Fields&... fields) {
        (touchOne(fields), ...);
        return *this;
    }
    std::int64_t bytes() const { return static_cast<std::int64_t>(lineSize) * std::popcount(m_mask); }

private:
    template <class Field>
    void touchOne(const Field& field) {
        const auto offset = static_cast<std::size_t>(reinterpret_cast<const std::byte*>(&field) -
                                                     reinterpret_cast<const std::byte*>(m_record));
        for (std::size_t line = offset / lineSize; line <= (offset + sizeof(Field) - 1) / lineSize; ++line)
            m_mask |= std::uint32_t{1} << line;
    }

    const Record* m_record;
    std::uint32_t m_mask = 0;
};

/// What of its records each kind of loop touches in two dimensions.
struct Plane {
    using Cell = CellRecord;
    using Face = FaceRecord;
    static constexpr int dimensions = 2;
    static constexpr std::int64_t weightSize = sizeof(Vec2);

    template <class Record>
    static Lines<Record> moments(const Record& r) {
        return Lines(r).touch(r.rho, r.u, r.v, r.T, r.H, r.Fx, r.Fy);
    }
    static Lines<Cell> centre(const Cell& r) { return Lines(r).touch(r.xc, r.yc); }
    static Lines<Face> geometry(const Face& r) {
        return Lines(r).touch(r.xf, r.yf, r.S0x, r.S0y, r.c0, r.c1);
    }
    static Lines<Face> kinds(const Face& r) { return geometry(r).touch(r.thermalKind, r.flowKind, r.q); }

    static Lines<Cell> written(const Cell& r, const StepConstants&) {
        return moments(r).touch(r.uPrev, r.vPrev, r.TPrev);
    }
    static Lines<Cell> updated(const Cell& r, const StepConstants& c) {
        Lines<Cell> lines = written(r, c).touch(r.area, r.faceCount);
        for (std::size_t j = 0; j < static_cast<std::size_t>(r.faceCount); ++j)
            lines.touch(r.faces[j], r.S[j]);
        return lines;
    }
    static const Cell& cell(std::int32_t i) { return mesh.cells2D[static_cast<std::size_t>(i)]; }
    static const Face& face(std::int32_t i) { return mesh.faces2D[static_cast<std::size_t>(i)]; }
};

/// The same in three dimensions.
struct Space {
    using Cell = CellRecord3D;
    using Face = FaceRecord3D;
    static constexpr int dimensions = 3;
    static constexpr std::int64_t weightSize = sizeof(Vec3);

    template <class Record>
    static Lines<Record> moments(const Record& r) {
        return Lines(r).touch(r.rho, r.u, r.v, r.w, r.T, r.Fx, r.Fy, r.Fz);
    }
    static Lines<Cell> centre(const Cell& r) { return Lines(r).touch(r.xc, r.yc, r.zc); }
    static Lines<Face> geometry(const Face& r) {
        return Lines(r).touch(r.xf, r.yf, r.zf, r.n0x, r.n0y, r.n0z, r.c0, r.c1);
    }
    static Lines<Face> kinds(const Face& r) { return geometry(r).touch(r.thermalKind, r.flowKind, r.q); }

    static Lines<Cell> written(const Cell& r, const StepConstants& c) {
        Lines<Cell> lines = moments(r).touch(r.uPrev, r.vPrev, r.wPrev, r.TPrev);
        return c.enthalpyForm() ? lines.touch(r.H) : lines;
    }
    static Lines<Cell> updated(const Cell& r, const StepConstants& c) {
        Lines<Cell> lines = written(r, c).touch(r.volume, r.faceCount);
        for (std::size_t j = 0; j < static_cast<std::size_t>(r.faceCount); ++j)
            lines.touch(r.faces[j], r.normals[j], r.areas[j]);
        return lines;
    }
    static const Cell& cell(std::int32_t i) { return mesh.cells3D[static_cast<std::size_t>(i)]; }
    static const Face& face(std::int32_t i) { return mesh.faces3D[static_cast<std::size_t>(i)]; }
};

/// The loops of a step on the present mesh.
template <class Form>
class Counter {
public:
    explicit Counter(const StepConstants& constants)
        : c(constants), row(numberSize * constants.velocityCount),
          fields((constants.flowOn ? 1 : 0) + (constants.heatOn() ? 1 : 0)), cells(mesh.cellCount),
          interior(mesh.interiorFaceCount), faces(mesh.totalFaceCount()) {}

    LoopTraffic collide() const {
        const std::int64_t rows = cells * fields * row;
        return {"collide", cells * Form::moments(sampleCell).bytes() + rows, 2 * rows, 2 * rows};
    }

    /// One pass over the mesh, lists included, for each distribution.
    LoopTraffic gradients() const {
        const std::int64_t entry = std::int64_t{sizeof(std::int32_t)} + Form::weightSize;
        const auto neighbours = static_cast<std::int64_t>(mesh.neighbourList.size());
        const std::int64_t offsets = (cells + 1) * std::int64_t{sizeof(std::int32_t)};
        const std::int64_t out = cells * fields * Form::dimensions * row;
        return {"gradients", fields * (cells * row + offsets + neighbours * entry), out, out};
    }

    LoopTraffic reconstruct() const {
        const std::int64_t moments = interior * Form::moments(sampleFace).bytes();
        const std::int64_t beside = cellsBeside(0, interior);
        const std::int64_t in = moments + interior * Form::geometry(sampleFace).bytes() +
                                beside * (Form::centre(sampleCell).bytes() + upwindRows());
        const std::int64_t out = interior * fields * row;
        return {"reconstruct", in, moments + out, out};
    }

    /// The rows are written number by number, not as a whole: their lines have to be there first.
    LoopTraffic boundary() const {
        const std::int64_t count = faces - interior;
        const std::int64_t out = count * (Form::moments(sampleFace).bytes() + fields * row);
        const std::int64_t perCell =
            Form::centre(sampleCell).bytes() + Form::moments(sampleCell).bytes() + upwindRows();
        return {"boundary",
                out + count * Form::kinds(sampleFace).bytes() + cellsBeside(interior, faces) * perCell, out,
                0};
    }

    LoopTraffic recover() const {
        const std::int64_t rows = faces * fields * row;
        return {"recover", faces * Form::moments(sampleFace).bytes() + rows, rows, 0};
    }

    LoopTraffic update() const {
        std::int64_t in = (faces + cells) * fields * row;
        for (std::int32_t i = 0; i < mesh.cellCount; ++i)
            in += Form::updated(Form::cell(i), c).bytes();
        const std::int64_t out = cells * fields * row;
        return {"update", in, cells * Form::written(sampleCell, c).bytes() + out, out};
    }

private:
    /// How many cells lie beside the faces first .. last - 1.
    std::int64_t cellsBeside(std::int32_t first, std::int32_t last) const {
        std::vector<bool> seen(static_cast<std::size_t>(cells));
        for (std::int32_t i = first; i < last; ++i)
            for (const std::int32_t cell : {Form::face(i).c0, Form::face(i).c1})
                if (cell >= 0)
                    seen[static_cast<std::size_t>(cell)] = true;
        return std::count(seen.begin(), seen.end(), true);
    }

    /// Bytes of a cell's values and gradients.
    std::int64_t upwindRows() const { return fields * (1 + Form::dimensions) * row; }

    const StepConstants& c;
    const std::int64_t row;    ///< bytes of a distribution
    const std::int64_t fields; ///< distributions a cell or face has: flow, heat
    const std::int64_t cells;
    const std::int32_t interior;
    const std::int32_t faces;
    const typename Form::Cell sampleCell{};
    const typename Form::Face sampleFace{};
};

/// Without cells, or without flow and heat, there is nothing to solve.
template <std::size_t N>
std::array<LoopTraffic, N> unlessIdle(const StepConstants& c, std::array<LoopTraffic, N> loops) {
    if (mesh.cellCount == 0 || (!c.flowOn && !c.heatOn()))
        for (LoopTraffic& loop : loops)
            loop = {loop.name};
    return loops;
}

} // namespace

std::array<LoopTraffic, 6> stepTraffic2D() {
    const StepConstants c = stepConstants2D();
    const Counter<Plane> count(c);
    return unlessIdle<6>(c, {count.collide(), count.gradients(), count.reconstruct(), count.boundary(),
                             count.recover(), count.update()});
}

std::array<LoopTraffic, 5> stepTraffic3D() {
    const StepConstants c = stepConstants3D();
    const Counter<Space> count(c);
    return unlessIdle<5>(
        c, {count.collide(), count.gradients(), count.reconstruct(), count.boundary(), count.update()});
}

std::int64_t totalBytes(std::span<const LoopTraffic> loops, RowStores stores) {
    std::int64_t total = 0;
    for (const LoopTraffic& loop : loops)
        total += loop.bytes(stores);
    return total;
}

} // namespace fluvane
