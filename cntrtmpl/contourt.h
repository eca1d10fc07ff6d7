#ifndef CNTRTMPL_CONTOURT_H
#define CNTRTMPL_CONTOURT_H

#include <vector>

#include <cntr/contour.h>
#include <cntr/contourmemo.h>
#include <cntr/export.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/persistent.h>
#include <foundation/xform.h>

class xcArchive;

template <class T>
class xcRegionT;

/// A contour that carries one datum of type T per vertex, kept in step with the vertices through
/// a planar transform, the data-from-points transform: it maps a vertex to the position of its
/// datum. The library instantiates it for xcEdgelet only (T needs a constructor from position,
/// 16-bit magnitude and xcAngle8 angle, and position()).
///
/// Consistency. Setting the vertices through the contour's points(...) rebuilds the data: datum
/// i becomes datum(point i), magnitude 0 and angle 0, whatever stood there before (a change of
/// geometry makes old edge measurements meaningless). Setting the data through data(...)
/// rebuilds the vertices: point i becomes point(datum i). Either way both lists have the same
/// length afterwards.
///
/// Transform. Construction from data clones the given transform, so the contour owns its own
/// copy; copies of the contour share it. The inverse used by point() is computed on first use
/// and then kept (copies share it too). A null transform, which only a default-constructed or a
/// version-0-loaded contour holds, is treated as the identity.
///
/// Equality is by vertices and by identity of the transform object (see operator==).
///
/// The contour's own operations that assign only the contour part (xcContour::map with an edgelet
/// contour as its output, xcContour::operator= through a contour reference) leave the data as
/// they were; set the points or the data afterwards to bring them back in step.
///
/// Not thread-safe, like xcContour: point() fills the cached inverse, also through const.
template <class T>
class xcContourT : public virtual xcContour {
  public:
    /// An empty closed contour with label 0, no data and a null transform (what the archive's
    /// factory creates).
    xcContourT();
    /// A closed contour with label 0 whose vertices are the data's positions: the transform is
    /// a new identity xc2XformLinear.
    explicit xcContourT(const std::vector<T>& data);
    /// A closed contour with label 0 of the data, with a clone of `xform` as the transform (a
    /// new identity xc2XformLinear when `xform` is null); vertex i is point(data[i]). Throws
    /// xcMathError::Singular when there are data and the transform has no inverse (without data
    /// no inverse is needed).
    xcContourT(const std::vector<T>& data, const xcPtrHandle_const<xc2XformBase>& xform);
    /// A copy: the contour part as xcContour copies it, the data, and the transform and its
    /// cached inverse shared with `other`.
    xcContourT(const xcContourT& other);
    /// Assigns as the copy constructor copies; self-assignment does nothing.
    xcContourT& operator=(const xcContourT& other);
    ~xcContourT() override;

    /// The data, index for index with the vertices.
    const std::vector<T>& data() const { return data_; }
    /// Replaces the data and rebuilds the vertices from it (makePointsConsistentWithData()).
    /// Throws xcMathError::Singular, changing nothing, when `d` is not empty and the transform
    /// has no inverse.
    void data(const std::vector<T>& d);

    /// The data-from-points transform (null only in a default-constructed or version-0-loaded
    /// contour).
    xcPtrHandle_const<xc2XformBase> dataFromPointsXform() const { return xform_; }

    /// The datum of a vertex at `point`: its position is the transform's image of `point`,
    /// magnitude 0 and angle 0.
    T datum(const xcVector<2>& point) const;
    /// The vertex of datum `e`: the inverse transform's image of e's position. The inverse is
    /// computed on the first call and cached. Throws xcMathError::Singular when the transform
    /// has no inverse.
    xcVector<2> point(const T& e) const;

    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void mapT(const xcXform<2>& xform, xcContourT& out) const;
    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void convexHullT(xcRegionT<T>& out) const;

    /// True when the vertices are equal one by one (exactly) and both contours hold the very
    /// same transform object (identity, not equal values). Data, closed flag, label and
    /// cachedVectorSize take no part. So a copy equals its source, while two contours built
    /// separately from the same data and transform handle differ (each cloned the transform).
    bool operator==(const xcContourT& other) const;
    bool operator!=(const xcContourT& other) const { return !(*this == other); }

  protected:
    /// Record, version 1: the version byte, the contour part's complete record, the data as a
    /// vector record and the transform as a handle record (a transform shared by several
    /// contours is stored once). Version 0 (read) has no transform. Each object is stored once
    /// per archive pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Reads or writes this level's fields for `version`. Loading takes vertices and data as
    /// stored (no consistency hook runs), leaves the transform alone for version 0 and forgets
    /// the cached inverse. Throws xcArchive::UnknownVersion("cntrtmpl", 98) for a version other
    /// than 0 and 1.
    void serialize_(xcArchive& ar, unsigned char version) override;
    /// Drops the caches and rebuilds the data from the vertices: datum(point) for each vertex.
    void makeDataConsistentWithPoints() override;
    /// Drops the caches and rebuilds the vertices from the data: point(datum) for each datum,
    /// installed with setPoints() so that the data are not rebuilt in turn. Throws
    /// xcMathError::Singular when the transform has no inverse.
    void makePointsConsistentWithData() override;

    /// Copies this level's own fields (data, transform, cached inverse) from `other`, leaving
    /// the contour part alone; for derived classes that assign the contour part themselves.
    void assignEdgeletPart(const xcContourT& other);

  private:
    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    /// The cached inverse transform, computed on first use (null for a null transform).
    const xcPtrHandle<xc2XformBase>& pointsFromDataXform() const;

    xcPtrHandle_const<xc2XformBase> xform_;
    std::vector<T> data_;
    mutable xn_contourDetail::Cached<xcPtrHandle<xc2XformBase>> inverse_;
};

// The instantiation lives in the cntr library. The export mark sits here, not on the template:
// xcEdgelet is not an exported type, which would otherwise keep the instantiation hidden.
extern template class CNTR_API xcContourT<xcEdgelet>;

#endif
