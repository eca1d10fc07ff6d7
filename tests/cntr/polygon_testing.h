// Shared helpers of the polygon tests: readable printing of rings and validity reports, and an
// exception check that names the error class, number and message.
#ifndef CNTR_TESTS_POLYGON_TESTING_H
#define CNTR_TESTS_POLYGON_TESTING_H

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <cntr/contourdefs.h>
#include <cntr/polygon.h>

namespace cntr {

inline void PrintTo(const Polygon& p, std::ostream* os) {
    for (std::size_t r = 0; r < p.ringCount(); ++r) {
        *os << (r == 0 ? "exterior {" : " hole {");
        for (std::size_t i = 0; i < p.ring(r).size(); ++i)
            *os << (i ? ", " : "") << "(" << p.ring(r)[i].x() << ", " << p.ring(r)[i].y() << ")";
        *os << "}";
    }
}

inline void PrintTo(const Validity& v, std::ostream* os) {
    *os << (v.valid ? "valid" : "invalid") << " problem " << static_cast<int>(v.problem) << " at ("
        << v.location.x() << ", " << v.location.y() << ") member " << v.member << " ring " << v.ring
        << " edge " << v.edge << " / " << v.otherMember << " " << v.otherRing << " " << v.otherEdge;
}

}  // namespace cntr

/// Runs `statement` and expects xcContourDefs::BadParams with exactly `message`.
#define EXPECT_BAD_PARAMS(statement, expectedMessage)                                   \
    do {                                                                                \
        try {                                                                           \
            statement;                                                                  \
            ADD_FAILURE() << "no exception from " #statement;                           \
        } catch (const xcContourDefs::BadParams& e) {                                   \
            EXPECT_EQ(e.errorNumber(), xnErrorNumber::ContourBadParams);                \
            EXPECT_EQ(e.message(), std::wstring(expectedMessage));                      \
        }                                                                               \
    } while (false)

#endif
