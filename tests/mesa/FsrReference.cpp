#include "FsrReference.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

struct Colour {
    double r, g, b;

    template <typename Function>
    static Colour each(Function f, const Colour& a, const Colour& b) {
        return {f(a.r, b.r), f(a.g, b.g), f(a.b, b.b)};
    }
    Colour operator+(const Colour& o) const { return {r + o.r, g + o.g, b + o.b}; }
    Colour operator*(double s) const { return {r * s, g * s, b * s}; }
};

Colour lower(const Colour& a, const Colour& b) {
    return Colour::each([](double x, double y) { return std::min(x, y); }, a, b);
}
Colour higher(const Colour& a, const Colour& b) {
    return Colour::each([](double x, double y) { return std::max(x, y); }, a, b);
}

Colour fetch(const Picture& picture, int x, int y) {
    const auto& pixel = picture.at(std::clamp(x, 0, picture.width - 1), std::clamp(y, 0, picture.height - 1));
    return {pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0};
}

Picture::Pixel store(const Colour& colour) {
    const auto byte = [](double c) { return static_cast<uint8_t>(std::lround(std::clamp(c, 0.0, 1.0) * 255)); };
    return {byte(colour.r), byte(colour.g), byte(colour.b), 255};
}

// The two approximations are part of the filter: they are defined on the bits of 32-bit floats.
double roughReciprocal(double a) {
    return static_cast<double>(std::bit_cast<float>(0x7EF07EBBu - std::bit_cast<uint32_t>(static_cast<float>(a))));
}
double roughInverseRoot(double a) {
    return static_cast<double>(
        std::bit_cast<float>(0x5F347D74u - (std::bit_cast<uint32_t>(static_cast<float>(a)) >> 1)));
}

Colour easuPixel(const Picture& input, double x, double y) {
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const double fx = x - left;
    const double fy = y - top;
    const auto tap = [&](int dx, int dy) { return fetch(input, left + dx, top + dy); };
    const auto luma = [&](int dx, int dy) {
        const Colour c = tap(dx, dy);
        return c.g + (c.r + c.b) / 2;
    };
    const auto steadiness = [](double before, double centre, double after) {
        const double steepest = std::max(std::abs(after - centre), std::abs(centre - before));
        return std::clamp(std::abs(after - before) * roughReciprocal(steepest), 0.0, 1.0);
    };
    double dirX = 0;
    double dirY = 0;
    double len = 0;
    for (const int my : {0, 1}) {
        for (const int mx : {0, 1}) {
            const double w = (mx ? fx : 1 - fx) * (my ? fy : 1 - fy);
            const double centre = luma(mx, my);
            dirX += w * (luma(mx + 1, my) - luma(mx - 1, my));
            dirY += w * (luma(mx, my + 1) - luma(mx, my - 1));
            len += w * std::pow(steadiness(luma(mx - 1, my), centre, luma(mx + 1, my)), 2);
            len += w * std::pow(steadiness(luma(mx, my - 1), centre, luma(mx, my + 1)), 2);
        }
    }
    const double q = dirX * dirX + dirY * dirY;
    if (q < 1.0 / 32768) {
        dirX = 1;
    } else {
        const double s = roughInverseRoot(q);
        dirX *= s;
        dirY *= s;
    }
    len = std::pow(len / 2, 2);
    const double stretch = (dirX * dirX + dirY * dirY) * roughReciprocal(std::max(std::abs(dirX), std::abs(dirY)));
    const double scaleX = 1 + (stretch - 1) * len;
    const double scaleY = 1 - len / 2;
    const double lob = 0.5 - 0.29 * len;
    const double clip = roughReciprocal(lob);
    Colour sum{0, 0, 0};
    double weights = 0;
    for (int dy = -1; dy <= 2; ++dy) {
        for (int dx = -1; dx <= 2; ++dx) {
            if ((dx == -1 || dx == 2) && (dy == -1 || dy == 2)) {
                continue;
            }
            const double ox = dx - fx;
            const double oy = dy - fy;
            const double vx = (ox * dirX + oy * dirY) * scaleX;
            const double vy = (-ox * dirY + oy * dirX) * scaleY;
            const double d = std::min(vx * vx + vy * vy, clip);
            const double w = (25.0 / 16 * std::pow(0.4 * d - 1, 2) - 9.0 / 16) * std::pow(lob * d - 1, 2);
            sum = sum + tap(dx, dy) * w;
            weights += w;
        }
    }
    const Colour low = lower(lower(tap(0, 0), tap(1, 0)), lower(tap(0, 1), tap(1, 1)));
    const Colour high = higher(higher(tap(0, 0), tap(1, 0)), higher(tap(0, 1), tap(1, 1)));
    return lower(higher(sum * (1 / weights), low), high);
}

} // namespace

Picture easuReference(const Picture& input, int outputWidth, int outputHeight) {
    Picture output(outputWidth, outputHeight);
    for (int y = 0; y < outputHeight; ++y) {
        for (int x = 0; x < outputWidth; ++x) {
            output.at(x, y) = store(easuPixel(input, (x + 0.5) * input.width / outputWidth - 0.5,
                                              (y + 0.5) * input.height / outputHeight - 0.5));
        }
    }
    return output;
}

Picture rcasReference(const Picture& input) {
    Picture output(input.width, input.height);
    for (int y = 0; y < input.height; ++y) {
        for (int x = 0; x < input.width; ++x) {
            const Colour e = fetch(input, x, y);
            const Colour ring[] = {fetch(input, x, y - 1), fetch(input, x - 1, y), fetch(input, x + 1, y),
                                   fetch(input, x, y + 1)};
            const Colour mn = lower(lower(ring[0], ring[1]), lower(ring[2], ring[3]));
            const Colour mx = higher(higher(ring[0], ring[1]), higher(ring[2], ring[3]));
            const auto lobeOf = [](double lowest, double highest, double centre) {
                const double hitMin = std::min(lowest, centre) / std::max(4 * highest, 1.0 / 32768);
                const double hitMax = (1 - std::max(highest, centre)) / std::min(4 * lowest - 4, -1.0 / 32768);
                return std::max(-hitMin, hitMax);
            };
            const double channels =
                std::max({lobeOf(mn.r, mx.r, e.r), lobeOf(mn.g, mx.g, e.g), lobeOf(mn.b, mx.b, e.b)});
            const double lobe = std::max(-0.1875, std::min(channels, 0.0)) * 0.70711;
            const Colour sum = ring[0] + ring[1] + ring[2] + ring[3];
            output.at(x, y) = store((e + sum * lobe) * (1 / (4 * lobe + 1)));
        }
    }
    return output;
}
