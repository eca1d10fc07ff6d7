// Shared helpers of the contour tests: a probe subclass that exposes the protected members and
// counts the cache resets, readable printing of vectors and contours, and common shapes.
#ifndef CNTR_TESTS_CONTOUR_TESTING_H
#define CNTR_TESTS_CONTOUR_TESTING_H

#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>

/// A contour that exposes the protected members to the tests and counts calls of the cache
/// reset and of the consistency hook.
class ContourProbe : public xcContour {
public:
    using xcContour::xcContour;
    ContourProbe(const ContourProbe&) = default;
    ContourProbe& operator=(const ContourProbe&) = default;

    using CacheState = xn_contourDetail::ContourCaches;
    using xcContour::cacheState;
    using xcContour::checkEmptyContour;
    using xcContour::computeLineSegs;
    using xcContour::intersections;
    using xcContour::lineSegs;
    using xcContour::makePointsConsistentWithData;
    using xcContour::medianFeatureSize;
    using xcContour::setPoints;
    using xcContour::validLine;

    int cleanCalls = 0;
    int dataHookCalls = 0;

protected:
    void cleanCacheInfo() override {
        ++cleanCalls;
        xcContour::cleanCacheInfo();
    }
    void makeDataConsistentWithPoints() override {
        ++dataHookCalls;
        xcContour::makeDataConsistentWithPoints();
    }
};

using Points = std::vector<xcVector<2>>;

inline void PrintTo(const xcVector<2>& v, std::ostream* os) { *os << "(" << v.x() << ", " << v.y() << ")"; }

inline void PrintTo(const xcContour& c, std::ostream* os) {
    *os << (c.isClosed() ? "closed" : "open") << " contour, label " << c.label() << ", cvs "
        << c.cachedVectorSize() << ", vertices {";
    for (std::size_t i = 0; i < c.points().size(); ++i) {
        *os << (i ? ", " : "");
        PrintTo(c.points()[i], os);
    }
    *os << "}";
}

/// The unit square (0,0), (1,0), (1,1), (0,1), counter-clockwise.
inline Points unitSquare() { return {{0, 0}, {1, 0}, {1, 1}, {0, 1}}; }

/// Expects EmptyContour with its number and an empty message from `call`.
template <class Call>
void expectEmptyContour(Call call) {
    try {
        call();
        ADD_FAILURE() << "no EmptyContour thrown";
    } catch (const xcContourDefs::EmptyContour& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004680);
        EXPECT_EQ(e.message(), L"");
    }
}

#endif
