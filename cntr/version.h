#ifndef CNTR_VERSION_H
#define CNTR_VERSION_H

#include <cntr/export.h>

/// The library's version as "major.minor.patch".
CNTR_API const char* xf_CntrVersion();

#endif
