// The fuzz targets' entry points, one per target. Each takes one input of arbitrary bytes and
// returns 0; a defect shows as a crash, a sanitizer report or an exception outside the library's
// family. The fuzz build wraps each in its own LLVMFuzzerTestOneInput (entry.cpp); the
// regression tests call them directly on the kept inputs.
#ifndef CNTR_FUZZ_TARGETS_H
#define CNTR_FUZZ_TARGETS_H

#include <cstddef>
#include <cstdint>

namespace xn_fuzz {

/// Archive bytes loaded as every persistent class of the library.
int archiveOneInput(const std::uint8_t* data, std::size_t size);
/// Vertex lists decoded from the bytes, queried as contours, regions and region sets.
int geometryOneInput(const std::uint8_t* data, std::size_t size);
/// Text read as the command-line tool's JSON input (its own format and COCO), then measured,
/// checked, repaired and written back as the tool does. Built with the tool only.
int jsonOneInput(const std::uint8_t* data, std::size_t size);

}  // namespace xn_fuzz

#endif
