#include <cstdio>
#include <cstring>

#include <cntr/version.h>
#include <cntrtmpl/contourt.h>
#include <foundation/foundation.h>

int main() {
    const xcXform<2> rot(xcMatrix<2>(xcRadian(xcPi / 2), xcRadian(xcPi / 2), 1.0, 1.0),
                         xcVector<2>());
    const xcVector<2> p = rot * xcVector<2>(1.0, 0.0);
    bool ok = std::strlen(xf_CntrVersion()) > 0 && xfRealEq(p, xcVector<2>(0.0, 1.0), 1e-12);
    try {
        xcMatrix<2>().inverse();
        ok = false;
    } catch (const xcException& e) {  // thrown inside the library, caught here
        ok = ok && e.errorNumber() == xnErrorNumber::MathSingular;
    }
    // An edgelet contour, instantiated inside the installed library: identity transform, so its
    // vertex is the edgelet's position.
    const xcContourT<xcEdgelet> edgelets({xcEdgelet(xcVector<2>(2.0, 3.0), 9, xcAngle8(64))});
    ok = ok && edgelets.points().size() == 1 && edgelets.points()[0] == xcVector<2>(2.0, 3.0);
    std::printf("%s\n", ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}
