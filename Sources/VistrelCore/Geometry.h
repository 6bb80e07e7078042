#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

/// Points, sizes and rectangles as plain double values. The unit and the direction of y are those of
/// whoever holds the value: views use points with y up, captured images whole pixels with y down.

struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
    friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
    friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;

    double minX() const { return std::min(x, x + width); }
    double maxX() const { return std::max(x, x + width); }
    double minY() const { return std::min(y, y + height); }
    double maxY() const { return std::max(y, y + height); }
    double midX() const { return x + width * 0.5; }
    double midY() const { return y + height * 0.5; }
    Point origin() const { return {x, y}; }
    Point center() const { return {midX(), midY()}; }
    Size size() const { return {width, height}; }
    bool isEmpty() const { return width == 0 || height == 0; }

    /// The same area with non-negative width and height.
    Rect standardized() const { return {minX(), minY(), std::abs(width), std::abs(height)}; }

    /// Moves every edge inwards by the amount (outwards when negative). Opposite edges that would pass
    /// each other meet in the middle.
    Rect insetBy(double dx, double dy) const {
        const Rect r = standardized();
        const double across = std::min(dx, r.width / 2);
        const double down = std::min(dy, r.height / 2);
        return {r.x + across, r.y + down, r.width - 2 * across, r.height - 2 * down};
    }
    Rect insetBy(double amount) const { return insetBy(amount, amount); }

    Rect offsetBy(Point by) const { return {x + by.x, y + by.y, width, height}; }

    /// Lower edges belong to the rectangle, upper edges do not; an empty rectangle contains nothing.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    /// Edges included: `other` may touch the border.
    bool contains(const Rect& other) const {
        return other.minX() >= minX() && other.maxX() <= maxX() && other.minY() >= minY() &&
               other.maxY() <= maxY();
    }
    /// True when both overlap in an area of positive size; a shared edge is no intersection.
    bool intersects(const Rect& other) const {
        return std::min(maxX(), other.maxX()) > std::max(minX(), other.minX()) &&
               std::min(maxY(), other.maxY()) > std::max(minY(), other.minY());
    }
    /// The common area, possibly of zero width or height when only an edge is shared; nothing when apart.
    std::optional<Rect> intersection(const Rect& other) const {
        const double left = std::max(minX(), other.minX());
        const double right = std::min(maxX(), other.maxX());
        const double bottom = std::max(minY(), other.minY());
        const double top = std::min(maxY(), other.maxY());
        if (!(left <= right && bottom <= top))
            return std::nullopt;
        return Rect{left, bottom, right - left, top - bottom};
    }
    /// The smallest rectangle that holds both.
    Rect united(const Rect& other) const {
        const double left = std::min(minX(), other.minX());
        const double right = std::max(maxX(), other.maxX());
        const double bottom = std::min(minY(), other.minY());
        const double top = std::max(maxY(), other.maxY());
        return {left, bottom, right - left, top - bottom};
    }
};
