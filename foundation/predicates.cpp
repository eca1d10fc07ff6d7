#include <algorithm>
#include <cmath>
#include <cstddef>

#include <foundation/predicates.h>
#include <foundation/predicates_detail.h>

namespace {

// Dekker's splitter 2^27 + 1: splits a double into two halves of at most 26 significant bits.
constexpr double kSplitter = 134217729.0;

// a + b = sum + err exactly (Knuth's two-sum).
void twoSum(double a, double b, double& sum, double& err) {
    sum = a + b;
    const double bVirtual = sum - a;
    const double aVirtual = sum - bVirtual;
    err = (a - aVirtual) + (b - bVirtual);
}

void split(double a, double& hi, double& lo) {
    const double c = kSplitter * a;
    hi = c - (c - a);
    lo = a - hi;
}

// a * b = product + err exactly (Dekker's two-product), barring over- and underflow.
void twoProduct(double a, double b, double& product, double& err) {
    product = a * b;
    double aHi, aLo, bHi, bLo;
    split(a, aHi, aLo);
    split(b, bHi, bLo);
    err = ((aHi * bHi - product) + aHi * bLo + aLo * bHi) + aLo * bLo;
}

// An exact sum of doubles held as a non-overlapping expansion, smallest component first.
class Expansion {
  public:
    void add(double b) {
        double q = b;
        for (std::size_t i = 0; i < size_; ++i)
            twoSum(q, c_[i], q, c_[i]);
        c_[size_++] = q;
    }
    // The sign of the exact sum: that of its largest nonzero component.
    int sign() const {
        for (std::size_t i = size_; i-- > 0;)
            if (c_[i] != 0.0)
                return c_[i] > 0.0 ? 1 : -1;
        return 0;
    }

  private:
    double c_[12] = {};
    std::size_t size_ = 0;
};

// The exact sign of (b - a) x (c - a), from the six-term expansion
// ax*by - ax*cy - ay*bx + ay*cx + bx*cy - by*cx evaluated without rounding. All six coordinates
// are first scaled by one power of two so that the largest lies in [0.5, 1): the scaling is exact
// and keeps every product clear of overflow; the result is exact as long as no nonzero scaled
// coordinate is below 2^-450 (no product underflows).
}  // namespace

namespace xn_predicates {

__attribute__((noinline)) int exactOrientation(const xcVector<2>& a, const xcVector<2>& b,
                                               const xcVector<2>& c) {
    const double m = std::max({std::fabs(a.x()), std::fabs(a.y()), std::fabs(b.x()),
                               std::fabs(b.y()), std::fabs(c.x()), std::fabs(c.y())});
    if (m == 0.0)
        return 0;
    int exponent = 0;
    std::frexp(m, &exponent);
    const auto scaled = [exponent](double v) { return std::ldexp(v, -exponent); };
    const double ax = scaled(a.x()), ay = scaled(a.y());
    const double bx = scaled(b.x()), by = scaled(b.y());
    const double cx = scaled(c.x()), cy = scaled(c.y());

    Expansion sum;
    const auto addProduct = [&sum](double u, double v) {
        double product, err;
        twoProduct(u, v, product, err);
        sum.add(err);
        sum.add(product);
    };
    addProduct(ax, by);
    addProduct(-ax, cy);
    addProduct(-ay, bx);
    addProduct(ay, cx);
    addProduct(bx, cy);
    addProduct(-by, cx);
    return sum.sign();
}

}  // namespace xn_predicates

namespace {

// Points in (x, then y) order.
bool lexLess(const xcVector<2>& p, const xcVector<2>& q) {
    return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
}

// Whether `p`, known to lie on the line through a and b, lies on the closed segment a-b.
bool withinCollinear(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    return std::min(a.x(), b.x()) <= p.x() && p.x() <= std::max(a.x(), b.x()) &&
           std::min(a.y(), b.y()) <= p.y() && p.y() <= std::max(a.y(), b.y());
}

bool onSegment(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    return xfOrientation(a, b, p) == 0 && withinCollinear(p, a, b);
}

xcSegmentContact contact(xcSegmentContact::Kind kind, const xcVector<2>& point) {
    xcSegmentContact c;
    c.kind = kind;
    c.point = point;
    return c;
}

// Two segments on one line: compare their spans in (x, then y) order.
xcSegmentContact collinearContact(const xcVector<2>& a1, const xcVector<2>& a2,
                                  const xcVector<2>& b1, const xcVector<2>& b2) {
    const xcVector<2> aLow = lexLess(a2, a1) ? a2 : a1, aHigh = lexLess(a2, a1) ? a1 : a2;
    const xcVector<2> bLow = lexLess(b2, b1) ? b2 : b1, bHigh = lexLess(b2, b1) ? b1 : b2;
    const xcVector<2> low = lexLess(aLow, bLow) ? bLow : aLow;
    const xcVector<2> high = lexLess(aHigh, bHigh) ? aHigh : bHigh;
    if (lexLess(low, high))
        return contact(xcSegmentContact::overlapping, low);
    if (low == high)
        return contact(xcSegmentContact::touching, low);
    return xcSegmentContact();
}

// The crossing point of two segments known to cross, from a1 + t (a2 - a1).
xcVector<2> crossingPoint(const xcVector<2>& a1, const xcVector<2>& a2, const xcVector<2>& b1,
                          const xcVector<2>& b2) {
    const xcVector<2> da = a2 - a1, db = b2 - b1, ab = b1 - a1;
    const double t = (ab.x() * db.y() - ab.y() * db.x()) / (da.x() * db.y() - da.y() * db.x());
    return {a1.x() + t * da.x(), a1.y() + t * da.y()};
}

// The contact of a point-like segment p with segment a-b.
xcSegmentContact pointContact(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    const bool on = a == b ? p == a : onSegment(p, a, b);
    return on ? contact(xcSegmentContact::touching, p) : xcSegmentContact();
}

}  // namespace

int xfOrientation(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    return xn_predicates::orientation(a, b, c);
}

xcSegmentContact xfSegmentContact(const xcVector<2>& a1, const xcVector<2>& a2,
                                  const xcVector<2>& b1, const xcVector<2>& b2) {
    if (a1 == a2)
        return pointContact(a1, b1, b2);
    if (b1 == b2)
        return pointContact(b1, a1, a2);
    const int o1 = xfOrientation(a1, a2, b1), o2 = xfOrientation(a1, a2, b2);
    const int o3 = xfOrientation(b1, b2, a1), o4 = xfOrientation(b1, b2, a2);
    if (o1 == 0 && o2 == 0)
        return collinearContact(a1, a2, b1, b2);
    if (o1 * o2 > 0 || o3 * o4 > 0)
        return xcSegmentContact();
    if (o1 != 0 && o2 != 0 && o3 != 0 && o4 != 0)
        return contact(xcSegmentContact::crossing, crossingPoint(a1, a2, b1, b2));
    // One end lies on the other segment's line, and the other segment reaches that line there:
    // the lines meet only at that end, so it is the common point.
    if (o1 == 0)
        return contact(xcSegmentContact::touching, b1);
    if (o2 == 0)
        return contact(xcSegmentContact::touching, b2);
    return contact(xcSegmentContact::touching, o3 == 0 ? a1 : a2);
}

xcRingLocation xfLocateInRing(const xcVector<2>& p, const std::vector<xcVector<2>>& ring) {
    const std::size_t n = ring.size();
    bool inside = false;
    for (std::size_t i = 0; i < n; ++i) {
        const xcVector<2>& a = ring[i];
        const xcVector<2>& b = ring[i + 1 == n ? 0 : i + 1];
        if (a == b ? p == a : onSegment(p, a, b))
            return xcRingLocation::boundary;
        // A crossing of the ray to +x: the edge spans p's y (half-open, so a vertex on the ray
        // counts once) and p lies on its left going up, or on its right going down.
        if ((a.y() > p.y()) != (b.y() > p.y())) {
            const int side = xfOrientation(a, b, p);
            if ((b.y() > a.y()) == (side > 0))
                inside = !inside;
        }
    }
    return inside && n >= 3 ? xcRingLocation::inside : xcRingLocation::outside;
}
