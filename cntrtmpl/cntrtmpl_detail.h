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

/// Defines the persistence plumbing that every edgelet template Class<T> shares: make(), which
/// creates a default Class<T> for the archive's factory; sExemplar, which registers it; and
/// dispatchSerialize(), which writes or reads the record's version byte (the defining file's
/// kCurrentVersion) once per object and archive pass and hands this level's fields to
/// Class::serialize_. That call is qualified on purpose: a derived class's override passes its
/// base part through here, so a virtual call would never end.
#define XN_CNTRTMPL_DEFINE_PERSISTENCE(Class)                                                  \
    template <class T>                                                                         \
    xcPersistent* Class<T>::make() {                                                           \
        return new Class<T>();                                                                 \
    }                                                                                          \
    template <class T>                                                                         \
    xc_Instantiator Class<T>::sExemplar(typeid(Class<T>), &Class<T>::make);                    \
    template <class T>                                                                         \
    void Class<T>::dispatchSerialize(xcArchive& ar) {                                          \
        dispatchPart(ar, this, kCurrentVersion,                                                \
                     [&](unsigned char version) { Class::serialize_(ar, version); });          \
    }

#endif
