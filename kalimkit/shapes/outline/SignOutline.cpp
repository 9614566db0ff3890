#include "kalimkit/shapes/outline/SignOutline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kalim {

namespace {

constexpr double lineWidth = 0.27;
constexpr double dotRadius = 0.165;

gfx::Path disc(gfx::Point middle, double radius) {
    gfx::Path path;
    path.addEllipse({middle.x - radius, middle.y - radius, 2 * radius, 2 * radius});
    return path;
}

gfx::Path line(std::initializer_list<gfx::Point> points) {
    gfx::Path path;
    for (const gfx::Point p : points)
        path.lineTo(p);
    return path;
}

// A polygon whose corners are rounded from so far on before and after them.
gfx::Path rounded(const std::vector<gfx::Point>& corners, double reach) {
    gfx::Path path;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const gfx::Point corner = corners[i];
        const auto towards = [&](gfx::Point other) {
            const gfx::Point way = other - corner;
            const double length = std::hypot(way.x, way.y);
            return corner + way * (std::min(reach, length / 2) / length);
        };
        path.lineTo(towards(corners[(i + corners.size() - 1) % corners.size()]));
        path.quadTo(corner, towards(corners[(i + 1) % corners.size()]));
    }
    path.close();
    return path;
}

Sign check() {
    return {disc({}, 1), line({{-0.47, 0.05}, {-0.13, 0.39}, {0.48, -0.33}}), {}, lineWidth};
}

Sign cross() {
    gfx::Path lines = line({{-0.37, -0.37}, {0.37, 0.37}});
    lines.moveTo({0.37, -0.37});
    lines.lineTo({-0.37, 0.37});
    return {disc({}, 1), lines, {}, lineWidth};
}

Sign warning() {
    return {rounded({{0, -1}, {1.08, 0.88}, {-1.08, 0.88}}, 0.36), line({{0, -0.28}, {0, 0.22}}),
            disc({0, 0.57}, dotRadius - 0.02), lineWidth - 0.03};
}

Sign question() {
    gfx::Path hook;
    hook.moveTo({-0.31, -0.26});
    hook.cubicTo({-0.31, -0.66}, {0.33, -0.68}, {0.33, -0.25});
    hook.cubicTo({0.33, 0.03}, {0, 0.02}, {0, 0.24});
    return {disc({}, 1), hook, disc({0, 0.6}, dotRadius - 0.01), lineWidth - 0.03};
}

Sign heart() {
    gfx::Path path;
    path.moveTo({0, 0.9});
    path.cubicTo({-0.45, 0.55}, {-1, 0.2}, {-1, -0.32});
    path.cubicTo({-1, -0.66}, {-0.74, -0.86}, {-0.48, -0.86});
    path.cubicTo({-0.26, -0.86}, {-0.09, -0.74}, {0, -0.55});
    path.cubicTo({0.09, -0.74}, {0.26, -0.86}, {0.48, -0.86});
    path.cubicTo({0.74, -0.86}, {1, -0.66}, {1, -0.32});
    path.cubicTo({1, 0.2}, {0.45, 0.55}, {0, 0.9});
    path.close();
    return {path, {}, {}, 0};
}

Sign arrow() {
    return {rounded({{-0.95, -0.3},
                     {0.1, -0.3},
                     {0.1, -0.82},
                     {1.02, 0},
                     {0.1, 0.82},
                     {0.1, 0.3},
                     {-0.95, 0.3}},
                    0.13),
            {},
            {},
            0};
}

}  // namespace

std::optional<Sign> signNamed(std::string_view name) {
    struct Named {
        std::string_view name;
        Sign (*make)();
    };
    constexpr Named signs[] = {{"check", check},       {"cross", cross}, {"warning", warning},
                               {"question", question}, {"heart", heart}, {"arrow", arrow}};
    const auto* const found = std::ranges::find(signs, name, &Named::name);
    if (found == std::end(signs)) return std::nullopt;
    return found->make();
}

}  // namespace kalim
