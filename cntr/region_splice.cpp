// Splicing two crossing outlines into one outline through their first crossing: the first
// non-degenerate edge of this outline that the other's segment query meets; the core builds the
// outline from the two edge caches.
#include <cntr/core/splice.h>
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

void xcRegion::splice(const xcRegion& other, xcRegion& result) const {
    const std::vector<xcLineSeg>& mine = lineSegs();
    const std::vector<bool>& valid = validLine();
    std::vector<int> edges;
    for (std::size_t i = 0; i < mine.size(); ++i) {
        if (!valid[i])
            continue;
        const std::vector<xcVector<2>> hits =
            cacheFilling(other).xcContour::intersections(mine[i], edges, true);
        if (hits.empty())
            continue;
        result = xcRegion(cntr::core::splicedOutline(mine, i, {hits.front(), edges.front()},
                                                     other.lineSegs(), other.points().size()),
                          xcContourDefs::keepOutline);
        return;
    }
    throw xcContourDefs::BadParams(L"spliced regions do not intersect");
}
