// The outline view that every core function takes (internal header, not installed).
#ifndef CNTR_CORE_OUTLINE_H
#define CNTR_CORE_OUTLINE_H

#include <cstddef>
#include <vector>

#include <foundation/vector.h>

namespace cntr::core {

/// Calls edge(k, start, end) for every edge k of a contour of n vertices, in edge order: closed,
/// edge 0 runs from vertex n-1 to vertex 0 and edge k from k-1 to k; open, edge k runs from
/// vertex k to vertex k+1.
template <class EdgeFunction>
void forEachEdge(std::size_t n, bool closed, EdgeFunction edge) {
    if (n == 0)
        return;
    if (closed) {
        edge(std::size_t{0}, n - 1, std::size_t{0});
        for (std::size_t k = 1; k < n; ++k)
            edge(k, k - 1, k);
    } else {
        for (std::size_t k = 0; k + 1 < n; ++k)
            edge(k, k, k + 1);
    }
}

/// The vertices edge k of a contour of n vertices starts and ends at (see forEachEdge).
inline std::size_t edgeStartVertex(std::size_t k, std::size_t n, bool closed) {
    return closed ? (k == 0 ? n - 1 : k - 1) : k;
}
inline std::size_t edgeEndVertex(std::size_t k, bool closed) {
    return closed ? k : k + 1;
}

/// A read-only view of an outline: its vertices (never copied) and whether the last joins the
/// first. The vertices must outlive the view and must not change while it is used.
class OutlineView {
  public:
    OutlineView(const std::vector<xcVector<2>>& points, bool closed)
        : points_(&points), closed_(closed) {}

    const std::vector<xcVector<2>>& points() const { return *points_; }
    std::size_t size() const { return points_->size(); }
    bool empty() const { return points_->empty(); }
    bool closed() const { return closed_; }
    const xcVector<2>& operator[](std::size_t i) const { return (*points_)[i]; }

    /// The number of edges: n closed, n - 1 open (0 without vertices).
    std::size_t edgeCount() const {
        const std::size_t n = size();
        return closed_ ? n : (n == 0 ? 0 : n - 1);
    }
    /// The vertex edge k starts at, and the one it ends at (see forEachEdge).
    const xcVector<2>& edgeStart(std::size_t k) const {
        return (*points_)[edgeStartVertex(k, size(), closed_)];
    }
    const xcVector<2>& edgeEnd(std::size_t k) const {
        return (*points_)[edgeEndVertex(k, closed_)];
    }

  private:
    const std::vector<xcVector<2>>* points_;
    bool closed_;
};

}  // namespace cntr::core

#endif
