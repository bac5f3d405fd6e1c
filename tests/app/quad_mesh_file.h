// Writes small meshes of quadrilaterals as mesh files.
#pragma once

#include <QFile>
#include <QString>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <utility>
#include <vector>

/// A mesh of quadrilaterals: each with its four points counter-clockwise, 0-based. `zoneOf` names the
/// boundary zone (an index into `zones`) of a boundary face by its midpoint.
struct QuadMesh {
    struct Point {
        double x, y;
    };
    std::vector<Point> points;
    std::vector<std::array<int, 4>> cells;
    std::vector<QString> zones;
    std::function<std::size_t(double x, double y)> zoneOf;
};

/// n by n squares on the unit square; zones bottom, right, top, left.
inline QuadMesh squareMesh(int n) {
    QuadMesh m;
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n; ++i)
            m.points.push_back({double(i) / n, double(j) / n});
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const int a = j * (n + 1) + i;
            m.cells.push_back({a, a + 1, a + n + 2, a + n + 1});
        }
    m.zones = {"bottom", "right", "top", "left"};
    m.zoneOf = [](double x, double y) -> std::size_t {
        constexpr double eps = 1e-9;
        return y < eps ? 0U : x > 1 - eps ? 1U : y > 1 - eps ? 2U : 3U;
    };
    return m;
}

/// A ring between radius 0.9 and 3 about the origin; zones inner, outer.
inline QuadMesh ringMesh(int around, int across) {
    QuadMesh m;
    for (int r = 0; r <= across; ++r)
        for (int a = 0; a < around; ++a) {
            const double radius = 0.9 + 2.1 * r / across;
            const double angle = 2 * M_PI * a / around;
            m.points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
        }
    for (int r = 0; r < across; ++r)
        for (int a = 0; a < around; ++a) {
            const int b = (a + 1) % around;
            m.cells.push_back({r * around + a, (r + 1) * around + a, (r + 1) * around + b, r * around + b});
        }
    m.zones = {"inner", "outer"};
    m.zoneOf = [](double x, double y) -> std::size_t { return std::hypot(x, y) < 2 ? 0U : 1U; };
    return m;
}

class QuadMeshFile {
public:
    explicit QuadMeshFile(const QuadMesh& m) : m_mesh(m) {
        for (std::size_t c = 0; c < m.cells.size(); ++c)
            for (std::size_t e = 0; e < 4; ++e)
                addEdge(m.cells[c][e], m.cells[c][(e + 1) % 4], int(c));
        m_boundary.resize(m.zones.size());
        for (const auto& [key, face] : m_edges) {
            if (face.c1 >= 0) {
                m_interior.push_back(face);
                continue;
            }
            const QuadMesh::Point& a = m.points[std::size_t(face.n0)];
            const QuadMesh::Point& b = m.points[std::size_t(face.n1)];
            m_boundary[m.zoneOf((a.x + b.x) / 2, (a.y + b.y) / 2)].push_back(face);
        }
    }

    bool write(const QString& path) {
        m_text.clear();
        const int points = int(m_mesh.points.size());
        const int cells = int(m_mesh.cells.size());
        m_text += "(0 \"test mesh\")\n(0 \"Dimension\")\n(2 2)\n(0 \"Node Section\")\n(10 (0 1 " +
                  hex(points) + " 0 2))\n(10 (1 1 " + hex(points) + " 1 2)\n(\n";
        for (const QuadMesh::Point& p : m_mesh.points)
            m_text += QByteArray::number(p.x, 'g', 16) + " " + QByteArray::number(p.y, 'g', 16) + "\n";
        m_text += "))\n(0 \"Cells\")\n(12 (0 1 " + hex(cells) + " 0))\n(12 (2 1 " + hex(cells) + " 1 3))\n";
        m_text += "(0 \"Faces\")\n(13 (0 1 " + hex(int(m_edges.size())) + " 0))\n(0 \"Interior faces\")\n";
        int last = 0;
        writeFaces(3, 2, m_interior, last);
        for (std::size_t z = 0; z < m_mesh.zones.size(); ++z) {
            m_text += "(0 \"Faces of zone " + m_mesh.zones[z].toLatin1() + "\")\n";
            writeFaces(int(z) + 4, 3, m_boundary[z], last);
        }
        m_text += "(0 \"Zone Sections\")\n(45 (2 fluid FLUID)())\n(45 (3 interior int_FLUID)())\n";
        for (std::size_t z = 0; z < m_mesh.zones.size(); ++z)
            m_text +=
                "(45 (" + QByteArray::number(int(z) + 4) + " wall " + m_mesh.zones[z].toLatin1() + ")())\n";
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(m_text) == m_text.size();
    }

    int faceCount() const { return int(m_edges.size()); }

private:
    struct Face {
        int n0, n1, c0, c1;
    };

    static QByteArray hex(int number) { return QByteArray::number(number, 16); }

    void addEdge(int a, int b, int cell) {
        const auto [at, isNew] = m_edges.try_emplace(std::minmax(a, b), Face{a, b, cell, -1});
        if (!isNew)
            at->second.c1 = cell;
    }

    void writeFaces(int zone, int type, const std::vector<Face>& faces, int& last) {
        const int first = last + 1;
        last += int(faces.size());
        m_text += "(13 (" + hex(zone) + " " + hex(first) + " " + hex(last) + " " + hex(type) + " 2)(\n";
        for (const Face& f : faces)
            m_text += hex(f.n0 + 1) + " " + hex(f.n1 + 1) + " " + hex(f.c0 + 1) + " " + hex(f.c1 + 1) + "\n";
        m_text += ")\n)\n";
    }

    const QuadMesh& m_mesh;
    std::map<std::pair<int, int>, Face> m_edges;
    std::vector<Face> m_interior;
    std::vector<std::vector<Face>> m_boundary;
    QByteArray m_text;
};
