// Temporary bodies of the regularisation operations: replaced by the regularize engine.
// Until then every call refuses the outline, so the constructor modes that ask for these never
// silently do nothing.
#include <cntr/region.h>

void xcRegion::regularize(xcRegion&) const {
    throw xcContourDefs::BadParams(L"invalid contour");
}

void xcRegion::outerHull(xcRegion&) const {
    throw xcContourDefs::BadParams(L"invalid contour");
}

void xcRegion::outerHullRegularize(xcRegion&, bool) const {
    throw xcContourDefs::BadParams(L"invalid contour");
}

void xcRegion::splice(const xcRegion&, xcRegion&) const {
    throw xcContourDefs::BadParams(L"invalid contour");
}
