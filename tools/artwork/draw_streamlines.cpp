// Draws the picture of the Version window: streamlines of a row of vortices in a stream.
#include <QColor>
#include <QImage>
#include <QString>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

constexpr int width = 640;
constexpr int height = 400;

struct Vortex {
    double x, y, strength;
};

/// Alternating rows behind a body at the left, in pixels.
constexpr std::array<Vortex, 6> vortices{
    {{70, 150, -46}, {165, 250, 52}, {270, 150, -56}, {375, 250, 58}, {485, 150, -58}, {595, 250, 58}}};

/// Stream function of a uniform stream and of vortices with a solid core, with its gradient.
struct Stream {
    double psi = 0, dx = 0, dy = 0;
};

Stream streamAt(double x, double y) {
    constexpr double core2 = 26.0 * 26.0;
    Stream s;
    s.psi = 0.42 * y;
    s.dy = 0.42;
    for (const Vortex& v : vortices) {
        const double rx = x - v.x;
        const double ry = y - v.y;
        const double r2 = rx * rx + ry * ry + core2;
        s.psi += 0.5 * v.strength * std::log(r2);
        s.dx += v.strength * rx / r2;
        s.dy += v.strength * ry / r2;
    }
    return s;
}

/// Deep blue through teal to a warm white as t goes from 0 to 1.
std::array<double, 3> shade(double t) {
    constexpr std::array<std::array<double, 3>, 4> stops{
        {{10, 28, 62}, {18, 84, 122}, {72, 164, 170}, {232, 226, 196}}};
    const double at = std::clamp(t, 0.0, 1.0) * 3;
    const auto i = static_cast<std::size_t>(std::min(at, 2.0));
    const double f = at - static_cast<double>(i);
    std::array<double, 3> rgb{};
    for (std::size_t c = 0; c < 3; ++c)
        rgb[c] = (1 - f) * stops[i][c] + f * stops[i + 1][c];
    return rgb;
}

QRgb pixelAt(int px, int py) {
    constexpr double spacing = 7.0; // of stream function between two lines
    const Stream s = streamAt(px + 0.5, py + 0.5);
    const double speed = std::hypot(s.dx, s.dy);
    std::array<double, 3> rgb = shade(0.08 + 0.34 * speed);
    const double turns = s.psi / spacing;
    const double pixelsAway = std::abs(turns - std::round(turns)) * spacing / std::max(speed, 1e-3);
    const double line = 0.62 * std::clamp(1.35 - pixelsAway, 0.0, 1.0);
    for (double& c : rgb)
        c += line * (246 - c);
    return qRgb(static_cast<int>(rgb[0]), static_cast<int>(rgb[1]), static_cast<int>(rgb[2]));
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE.jpg\n", argv[0]);
        return 2;
    }
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, pixelAt(x, y));
    return image.save(QString::fromLocal8Bit(argv[1]), "JPG", 88) ? 0 : 1;
}
