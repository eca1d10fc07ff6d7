#ifndef FOUNDATION_FOUNDATION_H
#define FOUNDATION_FOUNDATION_H

/// Everything the foundation layer offers.
#include <foundation/angle.h>
#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/export.h>
#include <foundation/fit.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/hull.h>
#include <foundation/matrix.h>
#include <foundation/numeric.h>
#include <foundation/persistent.h>
#include <foundation/random.h>
#include <foundation/tablet.h>
#include <foundation/thread.h>
#include <foundation/vector.h>
#include <foundation/xform.h>

#endif
