#include "shapes.h"

#include <algorithm>
#include <cctype>

#include <cntr/contourdefs.h>

namespace cntrtool {

namespace {

std::string joinPath(const std::string& parent, const std::string& part) {
    return parent.empty() ? part : parent + ", " + part;
}

void visitRegion(const xcRegion& region, const std::string& where, bool isHole,
                 const std::vector<RefusedHoles>& refused,
                 const std::function<void(const OutlineRef&)>& visit) {
    visit(OutlineRef{region, where, true, isHole});
    std::size_t k = 0;
    for (const xcPtrHandle_const<xcRegion>& hole : region.holes())
        visitRegion(*hole, joinPath(where, "hole " + std::to_string(k++)), true, refused, visit);
    for (const RefusedHoles& r : refused) {
        if (r.where != where)
            continue;
        for (const xcPtrHandle<xcRegion>& hole : r.holes)
            visitRegion(*hole, joinPath(where, "hole " + std::to_string(k++)), true, refused,
                        visit);
    }
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The end of "hole N" at `i`, or `i` when there is none.
std::size_t holeStepEnd(const std::string& text, std::size_t i) {
    static const std::string kHole = "hole ";
    if (text.compare(i, kHole.size(), kHole) != 0)
        return i;
    std::size_t end = i + kHole.size();
    while (end < text.size() && isDigit(text[end]))
        ++end;
    return end == i + kHole.size() ? i : end;
}

// The steps ("hole 4") of the chain of holes that starts at `i`; `end` is set past it.
std::vector<std::string> holeChainAt(const std::string& text, std::size_t i, std::size_t& end) {
    static const std::string kComma = ", ";
    std::vector<std::string> steps;
    end = i;
    if (i > 0 && std::isalnum(static_cast<unsigned char>(text[i - 1])))
        return steps;  // inside a word
    for (std::size_t at = i;;) {
        const std::size_t stepEnd = holeStepEnd(text, at);
        if (stepEnd == at)
            return steps;
        steps.push_back(text.substr(at, stepEnd - at));
        end = stepEnd;
        if (text.compare(stepEnd, kComma.size(), kComma) != 0)
            return steps;
        at = stepEnd + kComma.size();
    }
}

std::string shortChain(const std::vector<std::string>& steps) {
    const bool same = std::all_of(steps.begin(), steps.end(),
                                  [&steps](const std::string& s) { return s == steps.front(); });
    return (same ? steps.front() : steps.front() + ", ..., " + steps.back()) + " (" +
           std::to_string(steps.size()) + " levels deep)";
}

}  // namespace

std::string withHoleChainsShortened(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t end = i;
        const std::vector<std::string> steps = holeChainAt(text, i, end);
        if (steps.size() > kSpelledOutHoleDepth)
            out += shortChain(steps);
        else
            out.append(text, i, std::max(end, i + 1) - i);
        i = std::max(end, i + 1);
    }
    return out;
}

const char* kindName(ShapeKind kind) {
    switch (kind) {
        case ShapeKind::contour:
            return "contour";
        case ShapeKind::region:
            return "region";
        case ShapeKind::regionSet:
            return "regionset";
    }
    return "?";
}

std::string kindCell(ShapeKind kind, bool edgelet) {
    return std::string(edgelet ? "edgelet-" : "") + kindName(kind);
}

ShapeHeading ShapeHeading::of(const Shape& shape) {
    return ShapeHeading{shape.index, shape.kind, shape.edgelet, labelOf(shape)};
}

std::vector<std::string> ShapeHeading::cells() const {
    return {std::to_string(index), kindCell(kind, edgelet), std::to_string(label)};
}

Json ShapeHeading::json() const {
    return Json{{"index", index}, {"kind", kindName(kind)}, {"edgelet", edgelet}, {"label", label}};
}

unsigned long labelOf(const Shape& shape) {
    switch (shape.kind) {
        case ShapeKind::contour:
            return shape.contour->label();
        case ShapeKind::region:
            return shape.region->label();
        case ShapeKind::regionSet: {
            const auto regions = regionsOf(*shape.set);
            return regions.empty() ? 0 : regions.front()->label();
        }
    }
    return 0;
}

std::vector<xcPtrHandle_const<xcRegion>> regionsOf(const xcRegionSet& set) {
    // regions() only copies the handle vector; it changes nothing.
    return const_cast<xcRegionSet&>(set).regions();
}

void forEachOutline(const Shape& shape, const std::function<void(const OutlineRef&)>& visit) {
    switch (shape.kind) {
        case ShapeKind::contour:
            visit(OutlineRef{*shape.contour, "", false, false});
            return;
        case ShapeKind::region:
            visitRegion(*shape.region, "", false, shape.refused, visit);
            return;
        case ShapeKind::regionSet: {
            std::size_t i = 0;
            for (const xcPtrHandle_const<xcRegion>& region : regionsOf(*shape.set))
                visitRegion(*region, "region " + std::to_string(i++), false, shape.refused, visit);
            return;
        }
    }
}

std::size_t vertexCount(const Shape& shape) {
    std::size_t n = 0;
    forEachOutline(shape, [&n](const OutlineRef& o) { n += o.outline.points().size(); });
    return n;
}

std::size_t holeCount(const Shape& shape) {
    const auto direct = [&shape](const xcRegion& region, const std::string& where) {
        std::size_t n = region.holes().size();
        for (const RefusedHoles& r : shape.refused)
            if (r.where == where)
                n += r.holes.size();
        return n;
    };
    switch (shape.kind) {
        case ShapeKind::contour:
            return 0;
        case ShapeKind::region:
            return direct(*shape.region, "");
        case ShapeKind::regionSet: {
            std::size_t n = 0, i = 0;
            for (const xcPtrHandle_const<xcRegion>& region : regionsOf(*shape.set))
                n += direct(*region, "region " + std::to_string(i++));
            return n;
        }
    }
    return 0;
}

xcPtrHandle<xcRegion> freshRegion(const xcRegion& region) {
    xcPtrHandle<xcRegion> fresh(
        new xcRegion(static_cast<const xcContour&>(region), xcContourDefs::keepOutline));
    try {
        fresh->holes(region.holes());
    } catch (const xcContourDefs::BadParams&) {
        // Holes that cross the outline, which only an archive can bring: the library refuses
        // to set them again, so the region is measured as it was loaded.
        return xcPtrHandle<xcRegion>(const_cast<xcRegion*>(&region));
    }
    return fresh;
}

}  // namespace cntrtool
