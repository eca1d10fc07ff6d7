#ifndef TESTS_FOUNDATION_TEST_SUPPORT_H
#define TESTS_FOUNDATION_TEST_SUPPORT_H

// Shared helpers of the foundation tests: readable GoogleTest output for the value types (found
// by argument-dependent lookup, the types being global), and a check of the error number that a
// call throws.

#include <cstring>
#include <ios>
#include <ostream>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/geometry.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

inline void PrintTo(const xcVector<2>& v, std::ostream* os) {
    *os << "(" << v.x() << ", " << v.y() << ")";
}

inline void PrintTo(const xcPoint& p, std::ostream* os) {
    PrintTo(p.vector(), os);
}

inline void PrintTo(const xcMatrix<2>& m, std::ostream* os) {
    *os << "[[" << m.element(0, 0) << ", " << m.element(0, 1) << "], [" << m.element(1, 0) << ", "
        << m.element(1, 1) << "]]";
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

/// Success when `call()` throws an xcException whose errorNumber() is `number` (and, when `what`
/// is given, whose what() is that text).
template <class Call>
testing::AssertionResult throwsError(Call&& call, long number, const char* what = nullptr) {
    try {
        call();
    } catch (const xcException& e) {
        if (e.errorNumber() != number)
            return testing::AssertionFailure()
                   << std::hex << "error number 0x" << e.errorNumber() << ", expected 0x" << number;
        if (what && std::strcmp(e.what(), what) != 0)
            return testing::AssertionFailure()
                   << "what() is \"" << e.what() << "\", expected \"" << what << "\"";
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "no exception";
}

#endif
