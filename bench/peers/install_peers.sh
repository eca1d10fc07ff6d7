#!/bin/sh
# Installs the peer libraries that the side-by-side benchmarks compare against, from Debian
# packages: OpenCV (core and imgproc), Boost (header-only Geometry), GEOS (C API) and Clipper.
# The library itself neither needs nor links any of them.
set -eu

packages="libopencv-core-dev libopencv-imgproc-dev libboost-dev libgeos-dev libpolyclipping-dev"

if [ "$(id -u)" -eq 0 ]; then
    as_root=""
else
    as_root="sudo"
fi

$as_root apt-get update
# shellcheck disable=SC2086  # the package list is split on purpose
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y --no-install-recommends $packages
