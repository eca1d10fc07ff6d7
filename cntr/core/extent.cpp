// Extent measures of an outline.
#include <cntr/core/extent.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <cntr/tolerances.h>

namespace cntr::core {

namespace {

// The start score of the extremal-vertex search: a vertex must score strictly above it.
constexpr double kLowestScore = std::numeric_limits<double>::lowest();

// The score of a vertex in a direction. The four axis directions use the plain coordinate, so
// that the inexact cos and sin of their angles do not disturb ties and large coordinates.
class DirectionScore {
  public:
    explicit DirectionScore(const xcRadian& angle) : d_(cos(angle), sin(angle)) {
        if (xfRealEq(d_, xcVector<2>(1.0, 0.0), kExactTolerance))
            axis_ = Axis::plusX;
        else if (xfRealEq(d_, xcVector<2>(-1.0, 0.0), kExactTolerance))
            axis_ = Axis::minusX;
        else if (xfRealEq(d_, xcVector<2>(0.0, 1.0), kExactTolerance))
            axis_ = Axis::plusY;
        else if (xfRealEq(d_, xcVector<2>(0.0, -1.0), kExactTolerance))
            axis_ = Axis::minusY;
    }
    double operator()(const xcVector<2>& p) const {
        switch (axis_) {
            case Axis::plusX:
                return p.x();
            case Axis::minusX:
                return -p.x();
            case Axis::plusY:
                return p.y();
            case Axis::minusY:
                return -p.y();
            case Axis::none:
                break;
        }
        return d_.dot(p);
    }

  private:
    enum class Axis { none, plusX, minusX, plusY, minusY };
    xcVector<2> d_;
    Axis axis_ = Axis::none;
};

}  // namespace

xcVector<2> wireCentre(const OutlineView& outline) {
    xcVector<2> sum;
    double total = 0.0;
    forEachEdge(outline.size(), outline.closed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const double d = outline[a].distance(outline[b]);
        total += d;
        sum += d * (outline[a] + outline[b]) / 2.0;
    });
    return sum / total;
}

long extremalVertex(const OutlineView& outline, const xcRadian& angle) {
    const DirectionScore score(angle);
    double best = kLowestScore;
    long index = -1;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const double s = score(outline[i]);
        if (s > best) {
            best = s;
            index = static_cast<long>(i);
        }
    }
    return index;
}

xcRect enclosingRect(const OutlineView& outline, const xcXform<2>& xform) {
    const bool identity = xfRealEq(xform, xcXform<2>::I, kExactTolerance);
    const auto mapped = [&](const xcVector<2>& p) { return identity ? p : xform * p; };
    xcRect box(mapped(outline[0]), xcVector<2>());
    for (std::size_t i = 1; i < outline.size(); ++i)
        box = box.enclose(xcRect::at(mapped(outline[i])));
    return box;
}

std::optional<double> largestFiniteCoordinate(const std::vector<xcVector<2>>& points) {
    // x - x is 0 for every finite x and NaN otherwise; x and y keep running values of their own.
    double foundX = 0.0, foundY = 0.0;
    double checkX = 0.0, checkY = 0.0;
    for (const xcVector<2>& p : points) {
        foundX = std::max(foundX, std::fabs(p.x()));
        foundY = std::max(foundY, std::fabs(p.y()));
        checkX += p.x() - p.x();
        checkY += p.y() - p.y();
    }
    if (!(checkX + checkY == 0.0))
        return std::nullopt;
    return std::max(foundX, foundY);
}

}  // namespace cntr::core
