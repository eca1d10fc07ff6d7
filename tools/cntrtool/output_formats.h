// Writing shapes: the tool's JSON, COCO (the input document with repaired annotations
// replaced) and the library's archive.
#ifndef CNTRTOOL_OUTPUT_FORMATS_H
#define CNTRTOOL_OUTPUT_FORMATS_H

#include <string>
#include <vector>

#include "shapes.h"

namespace cntrtool {

/// The tool JSON of one shape: what readToolJson reads back as an equal shape (same kind,
/// edgelet class, labels, closed flag, vertices, holes, refused holes at their place). An
/// edgelet contour is written by its edgelets and transform.
Json shapeToJson(const Shape& shape);
/// {"version": 1, "shapes": [...]}.
Json toolDocument(const std::vector<Shape>& shapes);

/// The archive of the shapes: each shape's handle record, in order, as the library holds the
/// shape. Holes the library refused cannot be stored: each shape that had some is named in
/// `lost`. Throws InputError naming `path` for a shape the archive cannot store.
std::string archiveContent(const std::string& path, const std::vector<Shape>& shapes,
                           std::vector<std::string>& lost);

/// The content of a file in `input`'s format holding `shapes`, which stand one for one for the
/// input's shapes. For JSON inputs the input's document is kept and only the shapes marked in
/// `changed` are replaced (a COCO annotation's "segmentation", with its "area" and "bbox"
/// computed anew, nothing else of it). `lost` as for archiveContent.
std::string contentInFormat(const ShapeFile& input, const std::vector<Shape>& shapes,
                            const std::vector<bool>& changed, std::vector<std::string>& lost);

}  // namespace cntrtool

#endif
