#ifndef FOUNDATION_FIT_H
#define FOUNDATION_FIT_H

#include <vector>

#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/export.h>
#include <foundation/geometry.h>
#include <foundation/vector.h>

/// Failures of the circle and ellipse fits.
class FOUNDATION_API xcFitError {
  public:
    /// Fewer points than the fit needs (after dropping the ignored ones).
    class FOUNDATION_API TooFewPoints
        : public xcExceptionT<TooFewPoints, xnErrorNumber::FitTooFewPoints> {
      public:
        explicit TooFewPoints(const std::wstring& message = L"too few points to fit");
        ~TooFewPoints() override;
    };
    /// The points determine no ellipse or circle (collinear points, a degenerate conic, an
    /// unsupported fit mode).
    class FOUNDATION_API Degenerate
        : public xcExceptionT<Degenerate, xnErrorNumber::FitDegenerate> {
      public:
        explicit Degenerate(const std::wstring& message = L"degenerate point configuration");
        ~Degenerate() override;
    };
    /// The fit's rms residual exceeds the allowed maximum.
    class FOUNDATION_API RmsTooLarge
        : public xcExceptionT<RmsTooLarge, xnErrorNumber::FitRmsTooLarge> {
      public:
        explicit RmsTooLarge(const std::wstring& message = L"fit residual exceeds maxRms");
        ~RmsTooLarge() override;
    };
};

/// Ellipse fit modes.
struct xcEllipseFitDefs {
    enum fit_mode {
        /// All five parameters (centre, radii, rotation) by direct least squares.
        fitAll = 0
    };
};

/// Parameters of xfEllipseFit.
class xcEllipseFitParams {
  public:
    /// `angle` is used by constrained modes only; the `ignoreCount` points farthest from the
    /// first fit are dropped and the fit repeated; the fit fails when its rms exceeds `maxRms`.
    xcEllipseFitParams(xcEllipseFitDefs::fit_mode mode, const xcRadian& angle, unsigned ignoreCount,
                       double maxRms)
        : mode_(mode), angle_(angle), ignore_(ignoreCount), maxRms_(maxRms) {}
    xcEllipseFitDefs::fit_mode mode() const { return mode_; }
    const xcRadian& angle() const { return angle_; }
    unsigned ignoreCount() const { return ignore_; }
    double maxRms() const { return maxRms_; }

  private:
    xcEllipseFitDefs::fit_mode mode_;
    xcRadian angle_;
    unsigned ignore_;
    double maxRms_;
};

/// Result of xfEllipseFit.
class xcEllipseFitResults {
  public:
    xcEllipseFitResults() = default;
    /// The fitted ellipse: r1 >= r2, rotation (the direction of r1) in [0, pi).
    const xcEllipse& ellipse() const { return ellipse_; }
    /// The root-mean-square orthogonal distance of the used points to the ellipse.
    double error() const { return error_; }
    void set(const xcEllipse& e, double err) {
        ellipse_ = e;
        error_ = err;
    }

  private:
    xcEllipse ellipse_;
    double error_ = 0.0;
};

/// Fits an ellipse to `points` (at least 5 after ignoring) by Fitzgibbon's direct least-squares
/// method in Halir and Flusser's formulation, on coordinates centred on the centroid and scaled
/// to unit rms radius. With ignoreCount > 0 the points farthest (orthogonal distance) from this
/// first fit are dropped (ties: the earlier point goes) and the rest fitted once more; this is a
/// single pass, so an outlier gross enough to drag the first fit towards itself may survive.
/// `results` receives the ellipse (r1 >= r2, rotation of r1 in [0, pi)) and the rms orthogonal
/// distance of the used points to it; on failure it is left unchanged.
/// Throws xcMathError::NotFinite for a NaN or infinite coordinate, a NaN maxRms, or coordinates
/// so large that the residual overflows; xcFitError::TooFewPoints; xcFitError::Degenerate for an
/// unsupported mode, coincident or collinear points, or points that determine no real ellipse
/// (r1 / r2 above 1e100 included); xcFitError::RmsTooLarge when the rms exceeds maxRms (always,
/// for a negative maxRms; never, for +infinity).
FOUNDATION_API void xfEllipseFit(const xcEllipseFitParams& params,
                                 const std::vector<xcVector<2>>& points,
                                 xcEllipseFitResults& results);

/// Circle fit modes.
struct xcCircleFitDefs {
    enum fit_mode {
        /// Centre and radius by algebraic least squares.
        fitAll = 0
    };
};

/// Parameters of xfCircleFit.
class xcCircleFitParams {
  public:
    /// `radiusHint` is used by constrained modes only; `ignoreCount` and `maxRms` as for the
    /// ellipse fit.
    xcCircleFitParams(xcCircleFitDefs::fit_mode mode, double radiusHint, unsigned ignoreCount,
                      double maxRms)
        : mode_(mode), hint_(radiusHint), ignore_(ignoreCount), maxRms_(maxRms) {}
    xcCircleFitDefs::fit_mode mode() const { return mode_; }
    double radiusHint() const { return hint_; }
    unsigned ignoreCount() const { return ignore_; }
    double maxRms() const { return maxRms_; }

  private:
    xcCircleFitDefs::fit_mode mode_;
    double hint_;
    unsigned ignore_;
    double maxRms_;
};

/// Result of xfCircleFit.
class xcCircleFitResults {
  public:
    xcCircleFitResults() = default;
    const xcCircle& circle() const { return circle_; }
    /// The rms of |distance to centre - radius| over the used points.
    double error() const { return error_; }
    void set(const xcCircle& c, double err) {
        circle_ = c;
        error_ = err;
    }

  private:
    xcCircle circle_;
    double error_ = 0.0;
};

/// Fits a circle to `points` (at least 3 after ignoring) by algebraic least squares (Kasa's fit:
/// minimises the sum of (x^2 + y^2 + D x + E y + F)^2) on coordinates centred on the centroid
/// and scaled to unit rms radius. ignoreCount, maxRms, the results and the exceptions are as for
/// xfEllipseFit; the error is the rms of |distance to centre - radius|.
FOUNDATION_API void xfCircleFit(const xcCircleFitParams& params,
                                const std::vector<xcVector<2>>& points,
                                xcCircleFitResults& results);

#endif
