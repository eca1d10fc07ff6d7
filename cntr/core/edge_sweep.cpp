#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include <cntr/core/box.h>
#include <cntr/core/edge_sweep.h>

namespace cntr::core {
namespace {

bool isConflict(const xcSegmentContact& contact) {
    return contact.kind == xcSegmentContact::crossing ||
           contact.kind == xcSegmentContact::overlapping;
}

// The edges that have a length, in order of their boxes' smallest x (then input order, so the
// order and hence the work done never depend on the sort's handling of ties).
std::vector<std::size_t> sweepOrder(const std::vector<SweptEdge>& edges,
                                    const std::vector<Box>& boxes) {
    std::vector<std::size_t> order;
    order.reserve(edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i)
        if (!(edges[i].start == edges[i].end))
            order.push_back(i);
    std::sort(order.begin(), order.end(), [&boxes](std::size_t a, std::size_t b) {
        return boxes[a].minX < boxes[b].minX || (boxes[a].minX == boxes[b].minX && a < b);
    });
    return order;
}

}  // namespace

std::optional<EdgeConflict> firstEdgeConflict(const std::vector<SweptEdge>& edges,
                                              std::vector<EdgeTouch>* touches) {
    std::vector<Box> boxes;
    boxes.reserve(edges.size());
    for (const SweptEdge& e : edges)
        boxes.push_back(Box::spanning(e.start, e.end));

    std::optional<EdgeConflict> best;
    std::vector<std::size_t> active;
    for (std::size_t current : sweepOrder(edges, boxes)) {
        const Box& box = boxes[current];
        active.erase(std::remove_if(active.begin(), active.end(),
                                    [&](std::size_t a) { return boxes[a].maxX < box.minX; }),
                     active.end());
        for (std::size_t other : active) {
            if (!boxes[other].overlapsInY(box))
                continue;
            const std::size_t first = std::min(current, other);
            const std::size_t second = std::max(current, other);
            if (best && (first > best->first || (first == best->first && second > best->second)))
                continue;
            const xcSegmentContact contact = xfSegmentContact(
                edges[first].start, edges[first].end, edges[second].start, edges[second].end);
            if (isConflict(contact))
                best = EdgeConflict{first, second, contact};
            else if (touches && !best && contact.kind == xcSegmentContact::touching)
                touches->push_back({first, second, contact.point});
        }
        active.push_back(current);
    }
    if (best && touches)
        touches->clear();
    return best;
}

}  // namespace cntr::core
