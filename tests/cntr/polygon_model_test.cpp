#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/edge_index.h>
#include <cntr/polygon.h>
#include <foundation/random.h>

#include "polygon_testing.h"

namespace {

using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;

const Ring kSquare = {{0, 0}, {4, 0}, {4, 3}, {0, 3}};
const Ring kHole = {{1, 1}, {2, 1}, {2, 2}};

// A ring of n vertices on the circle of radius `radius` about (cx, cy), counter-clockwise.
Ring circleRing(std::size_t n, double radius, double cx = 0.0, double cy = 0.0) {
    Ring ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * static_cast<double>(i) / static_cast<double>(n);
        ring.push_back({cx + radius * std::cos(a), cy + radius * std::sin(a)});
    }
    return ring;
}

TEST(PolygonModel, DefaultIsEmpty) {
    const Polygon p;
    EXPECT_TRUE(p.exterior().empty());
    EXPECT_TRUE(p.holes().empty());
    EXPECT_EQ(p.ringCount(), 1u);
    EXPECT_EQ(p.vertexCount(), 0u);
    EXPECT_EQ(p.bounds(), xcRect());
    EXPECT_FALSE(p.isValid());
    EXPECT_EQ(p.validity().problem, cntr::ValidityProblem::tooFewVertices);
}

TEST(PolygonModel, KeepsRingsAsGiven) {
    const Polygon p(kSquare, {kHole});
    EXPECT_EQ(p.exterior(), kSquare);
    ASSERT_EQ(p.holes().size(), 1u);
    EXPECT_EQ(p.holes()[0], kHole);
    EXPECT_EQ(p.ringCount(), 2u);
    EXPECT_EQ(p.ring(0), kSquare);
    EXPECT_EQ(p.ring(1), kHole);
    EXPECT_EQ(p.vertexCount(), 7u);
}

TEST(PolygonModel, DropsOneRepeatedClosingVertex) {
    const Polygon p({{0, 0}, {4, 0}, {4, 3}, {0, 3}, {0, 0}}, {{{1, 1}, {2, 1}, {2, 2}, {1, 1}}});
    EXPECT_EQ(p.exterior(), kSquare);
    EXPECT_EQ(p.holes()[0], kHole);
    // Only the last vertex goes, and only when it equals the first.
    EXPECT_EQ(Polygon({{0, 0}, {1, 0}, {0, 0}, {0, 0}}).exterior(), (Ring{{0, 0}, {1, 0}, {0, 0}}));
    EXPECT_EQ(Polygon({{0, 0}, {0, 0}}).exterior(), (Ring{{0, 0}}));
    EXPECT_EQ(Polygon({{0, 0}, {1, 0}, {1, 0}}).exterior(), (Ring{{0, 0}, {1, 0}, {1, 0}}));
}

TEST(PolygonModel, RefusesNonFiniteCoordinatesNamingRingAndVertex) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_BAD_PARAMS(Polygon({{inf, 0}, {1, 0}, {1, 1}}),
                      L"polygon ring 0 vertex 0 has a non-finite coordinate");
    EXPECT_BAD_PARAMS(Polygon(kSquare, {kHole, {{1, 1}, {2, 1}, {2, nan}}}),
                      L"polygon ring 2 vertex 2 has a non-finite coordinate");
    // A non-finite closing vertex is refused before it could be dropped.
    EXPECT_BAD_PARAMS(Polygon({{nan, 0}, {1, 0}, {1, 1}, {nan, 0}}),
                      L"polygon ring 0 vertex 0 has a non-finite coordinate");
}

TEST(PolygonModel, RingOutOfRangeThrows) {
    const Polygon p(kSquare, {kHole});
    EXPECT_BAD_PARAMS(p.ring(2), L"polygon has no ring 2");
    EXPECT_BAD_PARAMS(p.signedArea(5), L"polygon has no ring 5");
    EXPECT_BAD_PARAMS(p.edgeIndex(2), L"polygon has no ring 2");
}

TEST(PolygonModel, BoundsHoldEveryRing) {
    const Polygon p(kSquare, {{{5, -1}, {6, 0}, {5, 1}}});
    EXPECT_EQ(p.bounds().ul(), (xcVector<2>{0, -1}));
    EXPECT_EQ(p.bounds().lr(), (xcVector<2>{6, 3}));
}

TEST(PolygonModel, SignedAreaIsPositiveCounterClockwise) {
    const Polygon p(kSquare, {kHole});
    EXPECT_EQ(p.signedArea(0), 12.0);
    EXPECT_EQ(p.signedArea(1), 0.5);
    const Polygon clockwise(Ring(kSquare.rbegin(), kSquare.rend()));
    EXPECT_EQ(clockwise.signedArea(0), -12.0);
}

TEST(PolygonModel, CopiesShareStorageAndCompareEqual) {
    const Polygon p(kSquare, {kHole});
    const Polygon copy = p;
    EXPECT_EQ(&copy.exterior(), &p.exterior());
    EXPECT_EQ(copy, p);
    EXPECT_EQ(Polygon(kSquare, {kHole}), p);
    EXPECT_NE(Polygon(kSquare), p);
    EXPECT_NE(Polygon(kSquare, {Ring(kHole.rbegin(), kHole.rend())}), p);
}

TEST(PolygonModel, EdgeIndexOnlyForLargeRingsBuiltOnceAndShared) {
    const Polygon p(circleRing(100, 10.0), {kHole});
    const cntr::core::EdgeIndex* index = p.edgeIndex(0);
    ASSERT_NE(index, nullptr);
    EXPECT_EQ(index->edgeCount(), 100u);
    EXPECT_EQ(p.edgeIndex(1), nullptr);  // 3 edges: below the index's minimum
    EXPECT_EQ(p.edgeIndex(0), index);
    const Polygon copy = p;
    EXPECT_EQ(copy.edgeIndex(0), index);
    // An equal polygon built apart has its own index.
    EXPECT_NE(Polygon(circleRing(100, 10.0)).edgeIndex(0), index);
    // Coordinates beyond the index's limit get none.
    EXPECT_EQ(Polygon(circleRing(100, 1e9)).edgeIndex(0), nullptr);
}

TEST(MultiPolygonModel, DefaultIsEmptyAndValid) {
    const MultiPolygon m;
    EXPECT_EQ(m.memberCount(), 0u);
    EXPECT_EQ(m.vertexCount(), 0u);
    EXPECT_EQ(m.bounds(), xcRect());
    EXPECT_TRUE(m.isValid());
    EXPECT_EQ(m.validity().problem, cntr::ValidityProblem::none);
    EXPECT_TRUE(m.validity().message.empty());
}

TEST(MultiPolygonModel, MembersCountsAndBounds) {
    const Polygon a(kSquare, {kHole});
    const Polygon b({{10, 10}, {12, 10}, {11, 13}});
    const MultiPolygon m({a, b, Polygon()});
    ASSERT_EQ(m.memberCount(), 3u);
    EXPECT_EQ(m.members()[0], a);
    EXPECT_EQ(m.members()[1], b);
    EXPECT_EQ(m.vertexCount(), 10u);
    // The empty member adds nothing to the bounds.
    EXPECT_EQ(m.bounds().ul(), (xcVector<2>{0, 0}));
    EXPECT_EQ(m.bounds().lr(), (xcVector<2>{12, 13}));
}

TEST(MultiPolygonModel, CopiesShareStorageAndCompareEqual) {
    const MultiPolygon m({Polygon(kSquare), Polygon(kHole)});
    const MultiPolygon copy = m;
    EXPECT_EQ(&copy.members(), &m.members());
    EXPECT_EQ(copy, m);
    EXPECT_EQ(MultiPolygon({Polygon(kSquare), Polygon(kHole)}), m);
    EXPECT_NE(MultiPolygon({Polygon(kHole), Polygon(kSquare)}), m);
    EXPECT_NE(MultiPolygon({Polygon(kSquare)}), m);
}

TEST(PolygonModel, SeededCopiesEqualTheirSources) {
    xcRandomUniform random(20261125);
    for (int round = 0; round < 200; ++round) {
        std::vector<Ring> rings(1 + static_cast<std::size_t>(random.next(0, 3)));
        for (Ring& ring : rings)
            for (int i = 0, n = static_cast<int>(random.next(0, 8)); i < n; ++i)
                ring.push_back({random.next(-5, 5), random.next(-5, 5)});
        const Polygon source(rings[0], std::vector<Ring>(rings.begin() + 1, rings.end()));
        Polygon copy;
        copy = source;
        EXPECT_EQ(copy, source);
        EXPECT_EQ(copy.bounds(), source.bounds());
        EXPECT_EQ(copy.vertexCount(), source.vertexCount());
        EXPECT_EQ(&copy.validity(), &source.validity());
        EXPECT_EQ(Polygon(source.exterior(), source.holes()), source);
    }
}

}  // namespace
