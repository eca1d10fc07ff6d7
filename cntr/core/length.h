// The length of an outline (internal header, not installed; the edge-order definition is
// referenceLength in reference.h).
#ifndef CNTR_CORE_LENGTH_H
#define CNTR_CORE_LENGTH_H

#include <cntr/core/outline.h>
#include <cntr/export.h>

namespace cntr::core {

/// The sum of the edge lengths; 0 without vertices. Up to 2^19 edges the lengths are added in
/// four interleaved partial sums, which agrees with referenceLength to within 1e-10 relative
/// (usually to the last bit or two); longer outlines add them in edge order.
CNTR_API double outlineLength(const OutlineView& outline);

}  // namespace cntr::core

#endif
