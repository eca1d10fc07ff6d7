// The polygon value types: construction, accessors and the data built once on demand.
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include <cntr/contourdefs.h>
#include <cntr/core/box.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/outline.h>
#include <cntr/polygon.h>
#include <cntr/polygon_detail.h>

namespace cntr {
namespace {

// Drops a repeated closing vertex and refuses non-finite coordinates, naming ring and vertex.
Ring checkedRing(Ring ring, std::size_t ringNumber) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
        if (!std::isfinite(ring[i].x()) || !std::isfinite(ring[i].y()))
            throw xcContourDefs::BadParams(L"polygon ring " + std::to_wstring(ringNumber) +
                                           L" vertex " + std::to_wstring(i) +
                                           L" has a non-finite coordinate");
    }
    if (ring.size() >= 2 && ring.front() == ring.back())
        ring.pop_back();
    return ring;
}

xcRect rectOf(const core::Box& box) {
    if (box.isEmpty())
        return xcRect();
    return xcRect({box.minX, box.minY}, {box.maxX - box.minX, box.maxY - box.minY});
}

}  // namespace

Polygon::Polygon() : Polygon(Ring()) {}

Polygon::Polygon(Ring exterior, std::vector<Ring> holes) {
    auto data = std::make_shared<Data>();
    data->exterior = checkedRing(std::move(exterior), 0);
    data->holes.reserve(holes.size());
    for (std::size_t h = 0; h < holes.size(); ++h)
        data->holes.push_back(checkedRing(std::move(holes[h]), h + 1));
    core::Box box = core::Box::around(data->exterior.begin(), data->exterior.end());
    data->vertexCount = data->exterior.size();
    for (const Ring& hole : data->holes) {
        box.merge(core::Box::around(hole.begin(), hole.end()));
        data->vertexCount += hole.size();
    }
    data->bounds = rectOf(box);
    data_ = std::move(data);
}

const Ring& Polygon::exterior() const { return data_->exterior; }
const std::vector<Ring>& Polygon::holes() const { return data_->holes; }
std::size_t Polygon::ringCount() const { return 1 + data_->holes.size(); }
std::size_t Polygon::vertexCount() const { return data_->vertexCount; }
xcRect Polygon::bounds() const { return data_->bounds; }

const Ring& Polygon::ring(std::size_t r) const {
    if (r >= ringCount())
        throw xcContourDefs::BadParams(L"polygon has no ring " + std::to_wstring(r));
    return r == 0 ? data_->exterior : data_->holes[r - 1];
}

double Polygon::signedArea(std::size_t r) const {
    const Ring& points = ring(r);
    double twice = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const xcVector<2>& a = points[i];
        const xcVector<2>& b = points[i + 1 == points.size() ? 0 : i + 1];
        twice += a.x() * b.y() - a.y() * b.x();
    }
    return 0.5 * twice;
}

const core::EdgeIndex* Polygon::edgeIndex(std::size_t r) const {
    ring(r);  // the range check
    std::call_once(data_->indexOnce, [this] {
        // Built aside and moved in, so that a failed build leaves nothing half done.
        std::vector<std::shared_ptr<const core::EdgeIndex>> built;
        for (std::size_t k = 0; k < ringCount(); ++k)
            built.push_back(core::EdgeIndex::build(core::OutlineView(ring(k), true)));
        data_->indexes = std::move(built);
    });
    return data_->indexes[r].get();
}

const Validity& Polygon::validity() const {
    std::call_once(data_->validityOnce,
                   [this] { data_->validity = detail::validityOf(std::vector<Polygon>{*this}, false); });
    return data_->validity;
}

bool Polygon::isValid() const { return validity().valid; }

bool Polygon::operator==(const Polygon& other) const {
    return data_ == other.data_ ||
           (data_->exterior == other.data_->exterior && data_->holes == other.data_->holes);
}

Polygon Polygon::fromContour(const xcContour& contour) { return Polygon(contour.points()); }

MultiPolygon::MultiPolygon() : MultiPolygon(std::vector<Polygon>()) {}

MultiPolygon::MultiPolygon(std::vector<Polygon> members) {
    auto data = std::make_shared<Data>();
    core::Box box;
    for (const Polygon& member : members) {
        data->vertexCount += member.vertexCount();
        if (member.vertexCount() > 0)
            box.merge(core::Box::of(member.bounds()));
    }
    data->bounds = rectOf(box);
    data->members = std::move(members);
    data_ = std::move(data);
}

const std::vector<Polygon>& MultiPolygon::members() const { return data_->members; }
std::size_t MultiPolygon::memberCount() const { return data_->members.size(); }
std::size_t MultiPolygon::vertexCount() const { return data_->vertexCount; }
xcRect MultiPolygon::bounds() const { return data_->bounds; }

const Validity& MultiPolygon::validity() const {
    std::call_once(data_->validityOnce,
                   [this] { data_->validity = detail::validityOf(data_->members, true); });
    return data_->validity;
}

bool MultiPolygon::isValid() const { return validity().valid; }

bool MultiPolygon::operator==(const MultiPolygon& other) const {
    return data_ == other.data_ || data_->members == other.data_->members;
}

}  // namespace cntr
