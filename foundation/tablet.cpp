#include <foundation/tablet.h>

xcUITablet::~xcUITablet() = default;

xcRecordingTablet::~xcRecordingTablet() = default;

void xcRecordingTablet::drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2,
                                    const xcColor& color, const Layers& layers) {
    segs_.push_back(Segment{p1, p2, color, layers});
}
