// Area, centroid and length of the polygon value types, and the with-holes centroids of regions
// and region sets, computed with the library's own functions and in the order of operations of
// the library's region and region set measures.
#ifndef CNTR_PYTHON_MEASURES_H
#define CNTR_PYTHON_MEASURES_H

#include <cntr/polygon.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace cntr_python {

/// The unsigned area of the exterior less the unsigned area of each hole (xf_Area of each
/// ring), as xcRegion::area(true) subtracts its holes.
double polygonArea(const cntr::Polygon& polygon);

/// The centroid of the filled area: without holes the exterior's xf_CenterOfMass; with holes
/// (A c - sum of a_h c_h) / (A - sum of a_h) over the rings' xf_Area and xf_CenterOfMass, the
/// arithmetic of xcRegion::centerOfMass(true).
xcVector<2> polygonCentroid(const cntr::Polygon& polygon);

/// The length of every ring, the exterior's first, each ring closed.
double polygonLength(const cntr::Polygon& polygon);

/// (minx, miny, maxx, maxy) of every vertex of every ring, exactly the extreme coordinates: the
/// value types keep their bounds as a corner and a size, and the far corner, their sum, can be
/// rounded by a unit in the last place. The default (empty) rectangle without vertices.
xcRect polygonBounds(const cntr::Polygon& polygon);
xcRect multiPolygonBounds(const cntr::MultiPolygon& multiPolygon);

/// The sum of the members' polygonArea.
double multiPolygonArea(const cntr::MultiPolygon& multiPolygon);

/// The members' centroids weighted by their areas, as xcRegionSet::centerOfMass combines its
/// regions ((0, 0) when the areas sum to within kExactTolerance of 0).
xcVector<2> multiPolygonCentroid(const cntr::MultiPolygon& multiPolygon);

/// The sum of the members' polygonLength.
double multiPolygonLength(const cntr::MultiPolygon& multiPolygon);

/// xcRegion::centerOfMass(considerHoles) as its first call computes it. With holes the library
/// answers later calls from a cache slot that it never fills (see xcRegion::centerOfMass), so
/// the with-holes centroid is computed here, every time, from the outline's and the holes'
/// cached area(false) and centerOfMass(false), with the library's arithmetic.
xcVector<2> regionCentroid(xcRegion& region, bool considerHoles);

/// xcRegionSet::centerOfMass(considerHoles), its regions' with-holes centroids taken from
/// regionCentroid (a region shared with another set would otherwise bring the library's unfilled
/// slot along).
xcVector<2> regionSetCentroid(xcRegionSet& set, bool considerHoles);

}  // namespace cntr_python

#endif
