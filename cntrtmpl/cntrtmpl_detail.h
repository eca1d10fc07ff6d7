// Helpers shared by the sources of the edgelet templates (internal header, not installed).
#ifndef CNTRTMPL_CNTRTMPL_DETAIL_H
#define CNTRTMPL_CNTRTMPL_DETAIL_H

#include <foundation/exception.h>

namespace xn_cntrtmplDetail {

/// The source name that the templates' refused archive records report.
constexpr const char* kArchiveSource = "cntrtmpl";

/// The geometric operations that the edgelet shapes do not provide (mapping, hulls,
/// regularisation) refuse every call with the foundation's error for an unsupported operation.
[[noreturn]] inline void throwNotProvided() {
    throw xcPel::BadWindow();
}

}  // namespace xn_cntrtmplDetail

#endif
