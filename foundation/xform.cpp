#include <foundation/archive.h>
#include <foundation/xform.h>

xc2XformBase::~xc2XformBase() = default;
xc2XformLinear::~xc2XformLinear() = default;

xcPtrHandle<xc2XformBase> xc2XformLinear::inverseBase() const {
    return xcPtrHandle<xc2XformBase>(new xc2XformLinear(x_.inverse()));
}

xcPtrHandle<xc2XformBase> xc2XformLinear::clone() const {
    return xcPtrHandle<xc2XformBase>(new xc2XformLinear(x_));
}

xcPersistent* xc2XformLinear::make() {
    return new xc2XformLinear();
}
xc_Instantiator xc2XformLinear::sExemplar(typeid(xc2XformLinear), &xc2XformLinear::make);

void xc2XformLinear::dispatchSerialize(xcArchive& ar) {
    dispatchPart(ar, this, 0, [&](unsigned char version) {
        checkVersion(version, 0, "xc2XformLinear", 0);
        xcPersistent::dispatchSerialize(ar);
        double e00 = x_.matrix().element(0, 0), e01 = x_.matrix().element(0, 1);
        double e10 = x_.matrix().element(1, 0), e11 = x_.matrix().element(1, 1);
        xcVector<2> t = x_.trans();
        ar || e00 || e01 || e10 || e11 || t;
        if (ar.isLoading()) {
            x_ = xcXform<2>(xcMatrix<2>(e00, e01, e10, e11), t);
            mutating();
        }
    });
}
