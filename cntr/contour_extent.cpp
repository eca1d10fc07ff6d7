// Extent measures: length, mean position, extremal vertices, diameter, enclosing rectangle.
#include <limits>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/core/length.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;
using namespace cntr;
using namespace cntr::core;

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

double xcContour::length() const {
    if (points_.empty())
        return 0.0;
    if (caches_.length.valid)
        return caches_.length.value;
    caches_.length.value = outlineLength(OutlineView(points_, isClosed()));
    caches_.length.valid = true;
    return caches_.length.value;
}

xcVector<2> xcContour::meanPosition() {
    checkEmptyContour();
    if (caches_.meanPosition.valid)
        return caches_.meanPosition.value;
    xcVector<2> sum;
    double total = 0.0;
    forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const double d = points_[a].distance(points_[b]);
        total += d;
        sum += d * (points_[a] + points_[b]) / 2.0;
    });
    caches_.meanPosition.value = sum / total;
    caches_.meanPosition.valid = true;
    return caches_.meanPosition.value;
}

long xcContour::extremalVertexIndex(const xcRadian& angle) const {
    checkEmptyContour();
    ExtremalVertexMemo& memo = caches_.extremalVertexMemo.make();
    const auto found = memo.find(angle);
    if (found != memo.end())
        return found->second;

    const DirectionScore score(angle);
    double best = kLowestScore;
    long index = -1;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const double s = score(points_[i]);
        if (s > best) {
            best = s;
            index = static_cast<long>(i);
        }
    }
    memoStore(caches_.extremalVertexMemo.pointer(), angle, index, cachedVectorSize_);
    return index;
}

xcVector<2> xcContour::extremalVertexPosition(const xcRadian& angle) {
    const long index = extremalVertexIndex(angle);
    if (index < 0)
        throw xcContourDefs::BadParams(L"no vertex is extremal in this direction");
    return points_[static_cast<std::size_t>(index)];
}

double xcContour::diameter(xcContourDefs::DiameterMode mode) const {
    return 2.0 * circleOf(mode).radius();
}

xcRect xcContour::encloseRect(const xcXform<2>& xform) {
    return rectOf(xform);
}

xcRect xcContour::rectOf(const xcXform<2>& xform) const {
    checkEmptyContour();
    RectMemo& memo = caches_.rectMemo.make();
    const auto found = memo.find(xform);
    if (found != memo.end())
        return found->second;

    const bool identity = xfRealEq(xform, xcXform<2>::I, kExactTolerance);
    const auto mapped = [&](const xcVector<2>& p) { return identity ? p : xform * p; };
    xcRect box(mapped(points_[0]), xcVector<2>());
    for (std::size_t i = 1; i < points_.size(); ++i)
        box = box.enclose(xcRect::at(mapped(points_[i])));
    memoStore(caches_.rectMemo.pointer(), xform, box, cachedVectorSize_);
    return box;
}
