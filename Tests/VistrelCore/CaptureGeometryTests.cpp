#include "VistrelCore/CaptureGeometry.h"

#include <gtest/gtest.h>

TEST(CaptureGeometry, aSelectionTouchesTheRightPixels) {
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const std::tuple<const char*, Rect, Size, Size, Rect> rows[] = {
        {"fractionalEdgesGrow", {0.4, 0.4, 10.2, 10.2}, {100, 100}, {200, 200}, {0, 178, 22, 22}},
        {"wholeEdgesStay", {10, 20, 30, 40}, {100, 100}, {200, 200}, {20, 80, 60, 80}},
        {"wholeView", {0, 0, 100, 50}, {100, 50}, {200, 100}, {0, 0, 200, 100}},
        {"outsideIsZero", {120, 0, 5, 5}, {100, 100}, {200, 200}, {}},
        {"sharedEdgeIsZero", {100, 0, 5, 5}, {100, 100}, {200, 200}, {}},
        {"emptySelectionIsZero", {10, 10, 0, 5}, {100, 100}, {200, 200}, {}},
        {"negativeSizeIsStandardized", {40, 60, -30, -40}, {100, 100}, {200, 200}, {20, 80, 60, 80}},
        {"cutAtTheView", {-10, 90, 30, 30}, {100, 100}, {200, 200}, {0, 0, 40, 20}},
        {"unequalScales", {10, 10, 10, 10}, {100, 100}, {300, 100}, {30, 80, 30, 10}},
        {"zeroView", {0, 0, 5, 5}, {0, 100}, {200, 200}, {}},
        {"zeroImage", {0, 0, 5, 5}, {100, 100}, {200, 0}, {}},
        {"viewThatIsNoNumber", {0, 0, 5, 5}, {notANumber, 100}, {200, 200}, {}},
        {"selectionThatIsNoNumber", {notANumber, 0, 5, 5}, {100, 100}, {200, 200}, {}},
        {"badgeExample", {10.25, 10.25, 100.5, 50.5}, {200, 100}, {400, 200}, {20, 78, 202, 102}},
    };
    for (const auto& [name, selection, view, image, expected] : rows)
        EXPECT_EQ(CaptureGeometry::pixelRect(selection, view, image), expected) << name;
}

TEST(CaptureGeometry, selectionOnPixelBordersKeepsItsPixelsAtEveryScale) {
    for (const double scale : {1.0, 1.1, 1.25, 1.4, 1.5, 1.75, 2.25, 3.0}) {
        const Size image = {1366, 769};
        const Size view = {image.width / scale, image.height / scale};
        for (int left = 0; left < 200; left += 7) {
            const Rect pixels = {double(left), double(left + 3), 211, 97};
            const Rect points = {pixels.x / scale, view.height - pixels.maxY() / scale, pixels.width / scale,
                                 pixels.height / scale};
            EXPECT_EQ(CaptureGeometry::pixelRect(points, view, image), pixels) << scale << " " << left;
        }
    }
}

TEST(CaptureGeometry, theLabelStaysWithinTheBounds) {
    const std::tuple<const char*, Rect, Size, Rect, Rect> rows[] = {
        {"above", {40, 40, 40, 20}, {20, 10}, {0, 0, 200, 100}, {50, 66, 20, 10}},
        {"justFitsAbove", {40, 40, 40, 44}, {20, 10}, {0, 0, 200, 100}, {50, 90, 20, 10}},
        {"insideTop", {40, 40, 40, 44.5}, {20, 10}, {0, 0, 200, 100}, {50, 68.5, 20, 10}},
        {"rightEdge", {190, 40, 10, 20}, {40, 10}, {0, 0, 200, 100}, {160, 66, 40, 10}},
        {"leftEdge", {0, 40, 10, 20}, {40, 10}, {0, 0, 200, 100}, {0, 66, 40, 10}},
        {"widerThanBounds", {0, 0, 10, 10}, {90, 5}, {5, 5, 50, 50}, {5, 16, 50, 5}},
        {"tallerThanBounds", {0, 0, 10, 10}, {9, 90}, {0, 0, 50, 50}, {0.5, 0, 9, 50}},
        {"belowBottom", {0, -80, 10, 10}, {10, 10}, {0, 0, 50, 50}, {0, 0, 10, 10}},
    };
    for (const auto& [name, selection, label, bounds, expected] : rows)
        EXPECT_EQ(CaptureGeometry::labelRect(selection, label, bounds), expected) << name;
}

TEST(CaptureGeometry, pointsAndWhatTheySpanLieWithinTheBounds) {
    const Rect rect = {10, 20, 100, 50};
    const std::tuple<const char*, Point, Point, Rect> rows[] = {
        {"inside", {30, 60}, {20, 40}, {20, 40, 10, 20}},
        {"across", {0, 0}, {500, 500}, rect},
        {"bothBeyondTheRightEdge", {200, 30}, {300, 40}, {110, 30, 0, 10}},
        {"bothBelow", {30, -5}, {40, 0}, {30, 20, 10, 0}},
    };
    for (const auto& [name, from, to, expected] : rows)
        EXPECT_EQ(CaptureGeometry::rectBetween(from, to, rect), expected) << name;
    EXPECT_EQ(CaptureGeometry::clamped({110, 70}, rect), (Point{110, 70})) << "on the edge";
    EXPECT_EQ(CaptureGeometry::clamped({-5, 500}, rect), (Point{10, 70}));
    EXPECT_EQ(CaptureGeometry::clamped({500, -5}, {7, 8, 0, 0}), (Point{7, 8}));
}

// Whatever the scale: a rectangle made of pixels holds those and no others.
TEST(CaptureGeometry, aRectangleHoldsItsPixels) {
    for (const double scale : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0}) {
        const double height = 769 / scale;
        const auto corner = [&](int x, int y) { return Point{x / scale, height - y / scale}; };
        const Rect all = {0, 0, 1366 / scale, height};
        for (int left = 0; left < 200; left += 7) {
            SCOPED_TRACE(testing::Message() << scale << ' ' << left);
            const int top = left + 3;
            const Rect rect =
                CaptureGeometry::rectBetween(corner(left + 211, top), corner(left, top + 97), all);
            const Rect moved = rect.offsetBy({1 / scale, -1 / scale}).offsetBy({-1 / scale, 1 / scale});
            for (const Rect& r : {rect, moved}) {
                EXPECT_TRUE(CaptureGeometry::holdsPixel(r, corner(left, top)));
                EXPECT_TRUE(CaptureGeometry::holdsPixel(r, corner(left + 210, top + 96)));
                EXPECT_FALSE(CaptureGeometry::holdsPixel(r, corner(left - 1, top)));
                EXPECT_FALSE(CaptureGeometry::holdsPixel(r, corner(left, top - 1)));
                EXPECT_FALSE(CaptureGeometry::holdsPixel(r, corner(left + 211, top)));
                EXPECT_FALSE(CaptureGeometry::holdsPixel(r, corner(left, top + 97)));
            }
        }
    }
    EXPECT_FALSE(CaptureGeometry::holdsPixel({0, 0, 0, 10}, {0, 5}));
}

TEST(Geometry, rectanglesFollowTheirEdgeRules) {
    const Rect rect = {0, 0, 10, 10};
    EXPECT_TRUE(rect.contains(rect));
    EXPECT_FALSE(rect.contains(Rect{1, 1, 10, 1}));
    EXPECT_FALSE(rect.intersects(Rect{10, 0, 5, 5}));
    EXPECT_TRUE(rect.intersects(Rect{12, 5, -5, 2}));
    EXPECT_EQ(rect.intersection({10, 2, 5, 5}), (Rect{10, 2, 0, 5}));
    EXPECT_EQ(rect.intersection({11, 2, 5, 5}), std::nullopt);
    EXPECT_EQ(rect.united({20, 5, -5, 15}), (Rect{0, 0, 20, 20}));
    EXPECT_EQ(rect.insetBy(2, 20), (Rect{2, 5, 6, 0}));
    EXPECT_EQ((Rect{10, 10, -10, -10}).insetBy(-1), (Rect{-1, -1, 12, 12}));
}
