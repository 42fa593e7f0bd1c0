#include <CorvantaSdkVideo/Editor/TrimmerGeometry.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <tuple>
#include <vector>

namespace corvanta {
namespace {

TrimmerGeometry laidOut(double width, double duration) {
    TrimmerGeometry geometry(0);
    geometry.layOut(width);
    geometry.setDuration(duration);
    return geometry;
}

bool drag(TrimmerGeometry& geometry, double position) {
    constexpr std::array moves{&TrimmerGeometry::moveRightEdge, &TrimmerGeometry::moveLeftEdge,
                               &TrimmerGeometry::moveTrimmerCenter};
    const auto edge = static_cast<std::size_t>(geometry.getTrimEdge(position));
    return edge < moves.size() && std::invoke(moves[edge], geometry, position);
}

// What must hold after any moves of a hand, whatever they were.
void expectConsistent(const TrimmerGeometry& geometry, double width, double rounding = 0) {
    const double left = geometry.leftEdge();
    const double right = geometry.rightEdge();
    ASSERT_TRUE(geometry.leftSide() == left - 12 && geometry.rightSide() == right + 12);
    ASSERT_NEAR(geometry.frameWidth(), right - left + 24, 1e-6);
    ASSERT_TRUE(left >= 12 - rounding && right + 12 <= width + rounding);
    ASSERT_GE(right - left, 64 - 1e-6);
    ASSERT_LE(std::max(geometry.leftSpace(), geometry.rightSpace()), 24);
    const auto [start, end] = geometry.range();
    ASSERT_NEAR(start, geometry.duration() * (left - 12) / width, 1e-12);
    ASSERT_NEAR(end, geometry.duration() * (right + 12) / width, 1e-12);
    ASSERT_TRUE(start >= 0 && end <= geometry.duration());
}

TEST(TrimmerGeometryTest, FollowsADragOfEachPartOfTheFrame) {
    // Each drag goes on from where the one before has left the frame: both edges and both spaces.
    TrimmerGeometry geometry = laidOut(343, 10);
    for (const auto& [x, moves, left, right, leftSpace, rightSpace] :
         std::vector<std::tuple<double, bool, double, double, double, double>>{
             {100, false, 12, 331, 0, 0},       // between the zones
             {12, false, 12, 331, 0, 0},        // the left edge stops short of the start
             {331, false, 12, 331, 0, 0},       // and the right one of the end
             {171.5, true, 12, 331, 24, 24},    // the centre, without room to move
             {160, false, 12, 331, 24, 24},     // too far to the left for the whole frame
             {12.5, true, 12.5, 331, 12.5, 24}, // the left edge's space is that of the touch
             {60, true, 60, 331, 24, 24},       // at most 24
             {300, true, 60, 300, 24, 24},      // 31 away from the right edge
             {325, true, 60, 325, 24, 18},      // its space is what is left of the strip
             {277, true, 60, 277, 24, 24},      // 48 away still counts
             {229, true, 60, 229, 24, 24},      //
             {181, true, 60, 181, 24, 24},      //
             {136, true, 75.5, 196.5, 24, 24},  // the centre moves both, by 15.5
             {153, true, 75.5, 153, 24, 24},    //
             {139, false, 75.5, 153, 24, 24},   // too close to the left edge
             {89, false, 75.5, 153, 24, 24},    // exactly 64 from the right edge
             {88, true, 88, 153, 24, 24},       //
             {130, true, 97.5, 162.5, 24, 24},  // in all three zones
         }) {
        EXPECT_EQ(drag(geometry, x), moves) << x;
        const std::array frame{geometry.leftEdge(), geometry.rightEdge(), geometry.leftSpace(),
                               geometry.rightSpace()};
        EXPECT_EQ(frame, (std::array{left, right, leftSpace, rightSpace})) << x;
    }
}

TEST(TrimmerGeometryTest, HoldsItsBoundsAndTheFormulaAfterAnyMoves) {
    std::mt19937 random(1);
    for (const double width : {288.0, 301.0, 343.0, 992.0, 1248.0, 495.3, 869.7}) {
        TrimmerGeometry geometry = laidOut(width, 2.021);
        for (int sweep = 0; sweep < 4; ++sweep) {
            for (double step = 0; step < width; ++step) {
                drag(geometry, sweep % 2 == 0 ? step : width - 1 - step);
                ASSERT_NO_FATAL_FAILURE(expectConsistent(geometry, width));
            }
        }
        EXPECT_FALSE(geometry.isWhole(geometry.range()));

        std::uniform_real_distribution<double> anywhere(-20, width + 20);
        std::normal_distribution<double> nearby(0, 12);
        int moves = 0;
        for (std::size_t count = 0; count < 5000; ++count) {
            const std::array grips{geometry.leftEdge(), geometry.rightEdge(), geometry.center()};
            const double grip = count % 4 == 3 ? anywhere(random) : grips[count % 4] + nearby(random);
            moves += drag(geometry, grip) ? 1 : 0;
            ASSERT_NO_FATAL_FAILURE(expectConsistent(geometry, width));
        }
        EXPECT_GT(moves, 2500);
        const std::array ways{&TrimmerGeometry::moveLeftEdgeBy, &TrimmerGeometry::moveRightEdgeBy,
                              &TrimmerGeometry::moveBy};
        for (std::size_t count = 0; count < 1000; ++count) {
            std::invoke(ways[count % 3], geometry, nearby(random) * (count % 7 == 0 ? 100 : 1));
            ASSERT_NO_FATAL_FAILURE(expectConsistent(geometry, width, 1e-9));
        }
    }
}

// In clips of as many seconds as the strip has points, so that times and positions are the same.
TEST(TrimmerGeometryTest, GoesAsFarAsTheClipAndTheLeastDistanceAllow) {
    constexpr auto start = &TrimmerGeometry::moveLeftEdgeBy;
    constexpr auto end = &TrimmerGeometry::moveRightEdgeBy;
    constexpr auto both = &TrimmerGeometry::moveBy;
    for (const auto& [from, to, move, distance, first, last] :
         std::vector<std::tuple<double, double, void (TrimmerGeometry::*)(double), double, double, double>>{
             {50, 300, start, 10, 60, 300},
             {50, 300, start, -60, 0, 300},
             {50, 300, start, 1e6, 212, 300},
             {50, 300, end, -20, 50, 280},
             {50, 300, end, 1e6, 50, 343},
             {50, 300, end, -1e6, 50, 138},
             {50, 300, both, 20, 70, 320},
             {50, 300, both, 1e6, 93, 343},
             {50, 300, both, -1e6, 0, 250},
             // Closer than a hand can bring the edges, as a smaller strip leaves them.
             {50, 80, start, 5, 50, 80},
             {50, 80, start, -5, 45, 80},
             {50, 80, end, -5, 50, 80}}) {
        SCOPED_TRACE(testing::Message() << from << " to " << to << " by " << distance);
        TrimmerGeometry geometry = laidOut(343, 343);
        geometry.placeAround({from, to});
        std::invoke(move, geometry, distance);
        EXPECT_DOUBLE_EQ(geometry.range().start, first);
        EXPECT_DOUBLE_EQ(geometry.range().end, last);
        EXPECT_EQ(geometry.frameWidth(), last - first);
        EXPECT_FALSE(geometry.isBetweenHandles(first + 23.9) || geometry.isBetweenHandles(last - 23.9));
        EXPECT_EQ(geometry.isBetweenHandles((first + last) / 2), last - first >= 48);
    }
    for (const auto& [width, from, to, movesStart, first, last] :
         std::vector<std::tuple<double, double, double, bool, double, double>>{
             {343, 20, 300, true, 20, 300},
             {343, -5, 1000, true, 0, 343},
             {343, 290, 300, true, 212, 300},
             {343, 290, 300, false, 255, 343},
             {343, 100, 110, false, 100, 188},
             {343, 0, 10, true, 0, 88},
             {343, 400, 500, true, 255, 343},
             {343, -20, -10, false, 0, 88},
             // No room for the least distance: all there is.
             {60, 10, 20, true, 0, 60},
             {60, 10, 20, false, 0, 60}}) {
        SCOPED_TRACE(testing::Message() << from << " to " << to << " on " << width);
        const auto found = laidOut(width, width).nearestTo({from, to}, movesStart);
        EXPECT_EQ(found.start, first);
        EXPECT_EQ(found.end, last);
    }
}

} // namespace
} // namespace corvanta
