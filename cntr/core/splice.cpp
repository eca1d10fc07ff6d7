// The outline that splices two outlines through a crossing.
#include <cntr/core/splice.h>

namespace cntr::core {

namespace {

using Points = std::vector<xcVector<2>>;

// Appends the end points of `count` stored segments, from segment `first` on, wrapping around.
void appendSegmentEnds(Points& out, const std::vector<xcLineSeg>& segs, std::size_t first,
                       std::size_t count) {
    for (std::size_t t = 0; t < count; ++t)
        out.push_back(segs[(first + t) % segs.size()].p2());
}

}  // namespace

std::vector<xcVector<2>> splicedOutline(const std::vector<xcLineSeg>& mine, std::size_t i,
                                        const SegmentHit& crossing,
                                        const std::vector<xcLineSeg>& others,
                                        std::size_t otherVertices) {
    // This outline from the crossing round to the crossing, then the other one from there.
    Points outline{crossing.point};
    appendSegmentEnds(outline, mine, i, mine.size());
    outline.push_back(crossing.point);
    appendSegmentEnds(outline, others, static_cast<std::size_t>(crossing.edge), otherVertices);
    return outline;
}

}  // namespace cntr::core
