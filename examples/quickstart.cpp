// A first look at the library: a few values computed with the foundation layer.
#include <cstdio>
#include <vector>

#include <cntr/version.h>
#include <foundation/foundation.h>

int main() {
    std::printf("cntr %s\n", xf_CntrVersion());

    const xcXform<2> quarterTurn(xcMatrix<2>(xcRadian(xcPi / 2), xcRadian(xcPi / 2), 1.0, 1.0),
                                 xcVector<2>(10.0, 0.0));
    const xcVector<2> p = quarterTurn * xcVector<2>(1.0, 0.0);
    std::printf("quarter turn then shift of (1, 0): (%.3f, %.3f)\n", p.x(), p.y());

    const xcLine a = xcLineSeg(xcVector<2>(0, 0), xcVector<2>(4, 4)).line();
    const xcLine b = xcLineSeg(xcVector<2>(0, 4), xcVector<2>(4, 0)).line();
    const xcVector<2> x = a.intersect(b);
    std::printf("diagonals of the 4x4 square cross at (%.3f, %.3f)\n", x.x(), x.y());

    xcRect box = xcRect::at(xcVector<2>(3, 1));
    for (const xcVector<2>& q : {xcVector<2>(-1, 2), xcVector<2>(5, -2), xcVector<2>(0, 7)})
        box = box.enclose(xcRect::at(q));
    std::printf("bounding box: (%.1f, %.1f) to (%.1f, %.1f)\n", box.ul().x(), box.ul().y(),
                box.lr().x(), box.lr().y());
    return 0;
}
