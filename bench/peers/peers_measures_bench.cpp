// Measures of one outline, ours against the peers' nearest equivalents: area, centroid and
// inertia (OpenCV moments and contourArea, Boost.Geometry area and centroid), the polygon's true
// moments (OpenCV moments), length (OpenCV arcLength), convex hull (OpenCV convexHull), ellipse
// fit (OpenCV fitEllipseDirect) and enclosing circle (OpenCV minEnclosingCircle).
//
// Our contour queries are timed on their first call: each iteration first drops the contour's
// caches (isClosed(true), which keeps the vertices), so nothing computed earlier is reused. The
// moment functions cache nothing.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <cntr/contour.h>
#include <cntr/moments.h>
#include <cntr/polygon.h>
#include <cntr/region.h>

#include "peers_adapters.h"
#include "peers_registry.h"

namespace peers {
namespace {

// OpenCV computes on single-precision coordinates: its answers agree with ours to about this.
constexpr double kSinglePrecisionAgreement = 1e-5;
// Its central moments subtract raw moments of a shape a few hundred units from the origin.
constexpr double kSinglePrecisionMomentAgreement = 1e-4;
// Two double-precision evaluations of one quantity by different formulas.
constexpr double kDoubleAgreement = 1e-9;
// OpenCV's direct ellipse fit does not return the textbook direct least-squares solution that
// ours does (checked against an independent generalized-eigenproblem solution: the radii differ
// by up to a fifth on spiky outlines). Only the centres are compared, within this fraction of
// our major semi-axis.
constexpr double kEllipseCentreAgreement = 0.05;

void drop(const xcContour& c) {
    const_cast<xcContour&>(c).isClosed(true);
}

double absArea(const cv::Moments& m) {
    return std::fabs(m.m00);
}

void registerMoments() {
    addStars("area", "ours", [](benchmark::State& state, const Input& in) {
        for (auto _ : state)
            benchmark::DoNotOptimize(xf_Area(in.points));
    });
    addStars("area", "opencv_moments", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        if (!agree(state, "area", xf_Area(in.points), absArea(cv::moments(p)),
                   kSinglePrecisionAgreement))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::moments(p));
    });
    addStars("area", "opencv_contourArea", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        if (!agree(state, "area", xf_Area(in.points), cv::contourArea(p),
                   kSinglePrecisionAgreement))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::contourArea(p));
    });
    addStars("area", "boost_area", [](benchmark::State& state, const Input& in) {
        const BPolygon p = toBoostPolygon(in.points);
        if (!agree(state, "area", xf_Area(in.points), bg::area(p), kDoubleAgreement))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(bg::area(p));
    });

    addStars("centroid", "ours", [](benchmark::State& state, const Input& in) {
        for (auto _ : state)
            benchmark::DoNotOptimize(xf_CenterOfMass(in.points));
    });
    addStars("centroid", "opencv_moments", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const xcVector<2> ours = xf_CenterOfMass(in.points);
        const cv::Moments m = cv::moments(p);
        const double scale = in.box.size().length();
        if (!agree(state, "centroid x", ours.x(), m.m10 / m.m00, kSinglePrecisionAgreement,
                   scale) ||
            !agree(state, "centroid y", ours.y(), m.m01 / m.m00, kSinglePrecisionAgreement, scale))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::moments(p));
    });
    addStars("centroid", "boost_centroid", [](benchmark::State& state, const Input& in) {
        const BPolygon p = toBoostPolygon(in.points);
        const xcVector<2> ours = xf_CenterOfMass(in.points);
        BPoint theirs;
        bg::centroid(p, theirs);
        const double scale = in.box.size().length();
        if (!agree(state, "centroid x", ours.x(), theirs.x(), kDoubleAgreement, scale) ||
            !agree(state, "centroid y", ours.y(), theirs.y(), kDoubleAgreement, scale))
            return;
        markChecked(state, true);
        for (auto _ : state) {
            bg::centroid(p, theirs);
            benchmark::DoNotOptimize(theirs);
        }
    });

    addStars("inertia", "ours", [](benchmark::State& state, const Input& in) {
        for (auto _ : state)
            benchmark::DoNotOptimize(xf_InertiaDataPolygon(in.points));
    });
    addStars("inertia", "opencv_moments", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const xcMatrix<2> ours = xf_InertiaDataPolygon(in.points).inertiaMatrix();
        const cv::Moments m = cv::moments(p);
        const double scale = std::max(std::fabs(m.mu20), std::fabs(m.mu02));
        const double t = kSinglePrecisionMomentAgreement;
        if (!agree(state, "mu20", ours.element(0, 0), m.mu20, t, scale) ||
            !agree(state, "mu11", ours.element(0, 1), m.mu11, t, scale) ||
            !agree(state, "mu02", ours.element(1, 1), m.mu02, t, scale))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::moments(p));
    });
}

// The true moments of the polygon type against OpenCV's moments of the same outline, both
// orientation-free and of the same names: the central moments up to order 3 and the first Hu
// invariant must agree to single precision.
void registerAreaMoments() {
    addStars("trueMoments", "ours", [](benchmark::State& state, const Input& in) {
        const cntr::Polygon polygon(in.points);
        for (auto _ : state)
            benchmark::DoNotOptimize(polygon.moments());
    });
    addStars("trueMoments", "opencv_moments", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const cntr::AreaMoments ours = cntr::Polygon(in.points).moments();
        const cv::Moments m = cv::moments(p);
        const double second = std::max(std::fabs(m.mu20), std::fabs(m.mu02));
        const double third = second * std::sqrt(second / std::fabs(m.m00));
        const double t = kSinglePrecisionMomentAgreement;
        if (!agree(state, "m00", ours.m00, absArea(m), kSinglePrecisionAgreement) ||
            !agree(state, "mu20", ours.mu20, m.mu20, t, second) ||
            !agree(state, "mu11", ours.mu11, m.mu11, t, second) ||
            !agree(state, "mu02", ours.mu02, m.mu02, t, second) ||
            !agree(state, "mu30", ours.mu30, m.mu30, t, third) ||
            !agree(state, "mu21", ours.mu21, m.mu21, t, third) ||
            !agree(state, "mu12", ours.mu12, m.mu12, t, third) ||
            !agree(state, "mu03", ours.mu03, m.mu03, t, third) ||
            !agree(state, "hu1", ours.hu[0], m.nu20 + m.nu02, t))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::moments(p));
    });
}

void registerLength() {
    addStars("length", "ours", [](benchmark::State& state, const Input& in) {
        const xcContour c(in.points, true);
        for (auto _ : state) {
            drop(c);
            benchmark::DoNotOptimize(c.length());
        }
    });
    addStars("length", "opencv_arcLength", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const xcContour c(in.points, true);
        if (!agree(state, "length", c.length(), cv::arcLength(p, true), kSinglePrecisionAgreement))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::arcLength(p, true));
    });
}

void registerHull() {
    addStars("convexHull", "ours", [](benchmark::State& state, const Input& in) {
        const xcContour c(in.points, true);
        xcRegion hull;
        for (auto _ : state) {
            drop(c);
            c.convexHull(hull);
            benchmark::DoNotOptimize(hull.points().data());
        }
    });
    addStars("convexHull", "opencv_convexHull", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const xcContour c(in.points, true);
        xcRegion ours;
        c.convexHull(ours);
        std::vector<cv::Point2f> theirs;
        cv::convexHull(p, theirs);
        if (!agree(state, "hull area", xf_Area(ours.points()), cv::contourArea(theirs),
                   kSinglePrecisionAgreement))
            return;
        markChecked(state, true);
        for (auto _ : state) {
            cv::convexHull(p, theirs);
            benchmark::DoNotOptimize(theirs.data());
        }
    });
}

void registerEllipse() {
    addStars("fitEllipse", "ours", [](benchmark::State& state, const Input& in) {
        const xcContour c(in.points, true);
        xcEllipse e;
        double rms = 0.0;
        for (auto _ : state) {
            drop(c);
            c.fitEllipse(e, rms);
            benchmark::DoNotOptimize(rms);
        }
    });
    addStars("fitEllipse", "opencv_fitEllipseDirect", [](benchmark::State& state,
                                                         const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        const xcContour c(in.points, true);
        xcEllipse ours;
        double rms = 0.0;
        c.fitEllipse(ours, rms);
        const cv::RotatedRect theirs = cv::fitEllipseDirect(p);
        const double scale = ours.r1();
        const double t = kEllipseCentreAgreement;
        if (!agree(state, "centre x", ours.center().x(), theirs.center.x, t, scale) ||
            !agree(state, "centre y", ours.center().y(), theirs.center.y, t, scale))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::fitEllipseDirect(p));
    });
}

void registerCircle() {
    addStars("encloseCircle", "ours", [](benchmark::State& state, const Input& in) {
        xcContour c(in.points, true);
        for (auto _ : state) {
            drop(c);
            benchmark::DoNotOptimize(c.encloseCircle(xcContourDefs::furthestVertexPair));
        }
    });
    // The two circles differ by definition (ours passes through the furthest pair, OpenCV's is
    // the smallest enclosing one), so the check is the bound that links them: the smallest
    // enclosing radius lies between half the diameter and the diameter over sqrt(3) (Jung).
    addStars("encloseCircle", "opencv_minEnclosingCircle", [](benchmark::State& state,
                                                              const Input& in) {
        const std::vector<cv::Point2f> p = toCv(in.points);
        xcContour c(in.points, true);
        const double half = c.encloseCircle(xcContourDefs::furthestVertexPair).radius();
        cv::Point2f centre;
        float radius = 0.0f;
        cv::minEnclosingCircle(p, centre, radius);
        const double slack = 1.0 + kSinglePrecisionAgreement;
        if (!(half <= radius * slack && radius <= 2.0 * half / std::sqrt(3.0) * slack)) {
            state.SkipWithError(("smallest enclosing radius " + std::to_string(radius) +
                                 " not between half the diameter " + std::to_string(half) +
                                 " and the diameter over sqrt(3)")
                                    .c_str());
            return;
        }
        markChecked(state, true);
        for (auto _ : state) {
            cv::minEnclosingCircle(p, centre, radius);
            benchmark::DoNotOptimize(radius);
        }
    });
}

const bool registered = (registerMoments(), registerAreaMoments(), registerLength(), registerHull(), registerEllipse(),
                         registerCircle(), true);

}  // namespace
}  // namespace peers
