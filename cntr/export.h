#ifndef CNTR_EXPORT_H
#define CNTR_EXPORT_H

#include <foundation/export.h>

/// Marks the public API of the contour library.
#if defined(CNTR_BUILDING)
#define CNTR_API XC_DLL_EXPORT
#else
#define CNTR_API XC_DLL_IMPORT
#endif

#endif
