#!/usr/bin/env bash
# Builds the programs for release and runs the proximity program on the example scene; arguments are handed to it.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
ensurePackages
cmake --preset release
cmake --build --preset release
exec build/release/tools/zuproximity examples/two_arms.xml --summary "$@"
