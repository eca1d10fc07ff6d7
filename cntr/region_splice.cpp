// Splicing two crossing outlines into one outline through their first crossing.
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

namespace {

using Points = std::vector<xcVector<2>>;

// Appends the end points of `count` stored segments, from segment `first` on, wrapping around.
// A zero-length edge is stored as the default segment, so it contributes (0, 0), not its
// vertex: the outline is built from the stored segments as they are.
void appendSegmentEnds(Points& out, const std::vector<xcLineSeg>& segs, std::size_t first,
                       std::size_t count) {
    for (std::size_t t = 0; t < count; ++t)
        out.push_back(segs[(first + t) % segs.size()].p2());
}

}  // namespace

void xcRegion::splice(const xcRegion& other, xcRegion& result) const {
    const std::vector<xcLineSeg>& mine = lineSegs();
    const std::vector<bool>& valid = validLine();
    std::vector<int> edges;
    for (std::size_t i = 0; i < mine.size(); ++i) {
        if (!valid[i])
            continue;
        const Points hits = cacheFilling(other).xcContour::intersections(mine[i], edges, true);
        if (hits.empty())
            continue;
        // This outline from the crossing round to the crossing, then the other one from there.
        Points outline{hits.front()};
        appendSegmentEnds(outline, mine, i, mine.size());
        outline.push_back(hits.front());
        appendSegmentEnds(outline, other.lineSegs(), static_cast<std::size_t>(edges.front()),
                          other.points().size());
        result = xcRegion(outline, xcContourDefs::keepOutline);
        return;
    }
    throw xcContourDefs::BadParams(L"spliced regions do not intersect");
}
