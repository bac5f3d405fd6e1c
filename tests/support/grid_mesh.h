// Writes rectangular grids of unit squares as Fluent ASCII meshes, in the layout that the reader takes.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace fluvane {

struct GridMesh {
    int nx = 1;
    int ny = 1;

    int node(int i, int j) const { return j * (nx + 1) + i + 1; }
    int cell(int i, int j) const { return j * nx + i + 1; }
    int nodeCount() const { return (nx + 1) * (ny + 1); }
    int interiorCount() const { return (nx - 1) * ny + nx * (ny - 1); }
    int faceCount() const { return interiorCount() + 2 * (nx + ny); }

    /// The file; every face has its first cell on its left.
    std::string text(const char* lineEnd = "\n") const {
        std::string out;
        const auto line = [&](const std::string& l) { out.append(l).append(lineEnd); };
        const auto hex = [](int value) {
            char digits[16];
            std::snprintf(digits, sizeof digits, "%x", static_cast<unsigned>(value));
            return std::string(digits);
        };
        const auto face = [&](int n0, int n1, int c0, int c1) {
            line(hex(n0) + " " + hex(n1) + " " + hex(c0) + " " + hex(c1));
        };
        line("(0 \"A grid of squares\")");
        line("(2 2)");
        line("(0 \"Node Section\")");
        line("(10 (0 1 " + hex(nodeCount()) + " 0 2))");
        line("(10 (1 1 " + hex(nodeCount()) + " 1 2)");
        line("(");
        for (int j = 0; j <= ny; ++j)
            for (int i = 0; i <= nx; ++i)
                line(std::to_string(i) + ".0 " + std::to_string(j) + ".0");
        line("))");
        line("(12 (0 1 " + hex(nx * ny) + " 0))");
        line("(12 (2 1 " + hex(nx * ny) + " 1 3))");
        line("(13 (0 1 " + hex(faceCount()) + " 0))");
        line("(0 \"Interior faces of zone FLUID\")");
        line("(13 (3 1 " + hex(interiorCount()) + " 2 2)(");
        for (int j = 0; j < ny; ++j) {
            for (int i = 0; i < nx; ++i) {
                if (i + 1 < nx)
                    face(node(i + 1, j), node(i + 1, j + 1), cell(i, j), cell(i + 1, j));
                if (j + 1 < ny)
                    face(node(i + 1, j + 1), node(i, j + 1), cell(i, j), cell(i, j + 1));
            }
        }
        line(")");
        line(")");
        int last = interiorCount();
        const char* const names[] = {"bottom", "right", "top", "left"};
        for (int side = 0; side < 4; ++side) {
            const int first = last + 1;
            const int count = side % 2 == 0 ? nx : ny;
            last += count;
            line(std::string("(0 \"Faces of zone ") + names[side] + "\")");
            line("(13 (" + hex(side + 4) + " " + hex(first) + " " + hex(last) + " 3 2)(");
            for (int s = 0; s < count; ++s) {
                if (side == 0)
                    face(node(s, 0), node(s + 1, 0), cell(s, 0), 0);
                else if (side == 1)
                    face(node(nx, s), node(nx, s + 1), cell(nx - 1, s), 0);
                else if (side == 2)
                    face(node(nx - s, ny), node(nx - s - 1, ny), cell(nx - 1 - s, ny - 1), 0);
                else
                    face(node(0, ny - s), node(0, ny - s - 1), cell(0, ny - 1 - s), 0);
            }
            line(")");
            line(")");
        }
        line("(0 \"Zone Sections\")");
        line("(45 (2 fluid FLUID)())");
        line("(45 (3 interior int_FLUID)())");
        for (int side = 0; side < 4; ++side)
            line("(45 (" + std::to_string(side + 4) + " wall " + names[side] + ")())");
        return out;
    }
};

/// `text` with the first occurrence of `from` replaced; `from` must be there.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

/// The text's lines without their ends.
inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        lines.push_back(text.substr(at, end - at));
        at = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

inline std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append("\n");
    return text;
}

} // namespace fluvane
