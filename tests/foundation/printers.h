#ifndef TESTS_FOUNDATION_PRINTERS_H
#define TESTS_FOUNDATION_PRINTERS_H

// Readable GoogleTest output for foundation value types, so that a failed comparison shows the
// values instead of their bytes. Found by argument-dependent lookup (the types are global).

#include <ostream>

#include <foundation/geometry.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

inline void PrintTo(const xcVector<2>& v, std::ostream* os) {
    *os << "(" << v.x() << ", " << v.y() << ")";
}

inline void PrintTo(const xcPoint& p, std::ostream* os) { PrintTo(p.vector(), os); }

inline void PrintTo(const xcMatrix<2>& m, std::ostream* os) {
    *os << "[[" << m.element(0, 0) << ", " << m.element(0, 1) << "], [" << m.element(1, 0)
        << ", " << m.element(1, 1) << "]]";
}

inline void PrintTo(const xcXform<2>& x, std::ostream* os) {
    PrintTo(x.matrix(), os);
    *os << " + ";
    PrintTo(x.trans(), os);
}

inline void PrintTo(const xcRect& r, std::ostream* os) {
    *os << "rect ";
    PrintTo(r.ul(), os);
    *os << " to ";
    PrintTo(r.lr(), os);
}

#endif
