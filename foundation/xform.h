#ifndef FOUNDATION_XFORM_H
#define FOUNDATION_XFORM_H

#include <foundation/export.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/persistent.h>
#include <foundation/vector.h>

/// An abstract planar transform, shared through counted handles and storable in archives.
class FOUNDATION_API xc2XformBase : public virtual xcPersistent, public virtual xcRepBase {
  public:
    ~xc2XformBase() override;
    /// The image of `p`.
    virtual xcVector<2> mapPoint(const xcVector<2>& p) const = 0;
    /// A new transform that undoes this one. Throws xcMathError::Singular when there is none.
    virtual xcPtrHandle<xc2XformBase> inverseBase() const = 0;
    /// A new transform equal to this one.
    virtual xcPtrHandle<xc2XformBase> clone() const = 0;

  protected:
    xc2XformBase() = default;
    xc2XformBase(const xc2XformBase&) = default;
    xc2XformBase& operator=(const xc2XformBase&) = default;
};

/// The affine transform of an xcXform<2>. The default is the identity.
class FOUNDATION_API xc2XformLinear : public xc2XformBase {
  public:
    xc2XformLinear() = default;
    explicit xc2XformLinear(const xcXform<2>& xform) : x_(xform) {}
    ~xc2XformLinear() override;

    const xcXform<2>& xform() const { return x_; }

    xcVector<2> mapPoint(const xcVector<2>& p) const override { return x_ * p; }
    xcPtrHandle<xc2XformBase> inverseBase() const override;
    xcPtrHandle<xc2XformBase> clone() const override;

    /// The record: a version byte (0), the xcPersistent record, the four matrix elements
    /// (row-major) and the two translation components, as doubles.
    void dispatchSerialize(xcArchive& ar) override;

  private:
    static xcPersistent* make();
    static xc_Instantiator sExemplar;
    xcXform<2> x_;
};

#endif
