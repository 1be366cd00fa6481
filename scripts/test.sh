#!/usr/bin/env bash
# Builds and runs every check; ends with "N passed, N failed", where each test and each other check counts one.
set -u
cd "$(dirname "$0")/.." || exit 1
. scripts/common.sh
. scripts/check_install.sh

passed=0
failed=0
skipped=0
logs=build/logs

# check NAME COMMAND...: one check; its output goes to a log, which is shown when it fails.
check() {
  local name=$1 log begin=$SECONDS
  shift
  log=$logs/$(echo "$name" | tr -c 'A-Za-z0-9\n' '_').log
  if "$@" >"$log" 2>&1; then
    passed=$((passed + 1))
    echo "ok      $name ($((SECONDS - begin)) s)"
    return 0
  fi
  failed=$((failed + 1))
  tail -n 200 "$log"
  echo "FAILED  $name ($((SECONDS - begin)) s)"
  return 1
}

# buildAndTest PRESET: each test of the preset counts one, and so does the build.
buildAndTest() {
  local counts=$logs/$1.counts begin p f s
  check "$1: configure" cmake --preset "$1" && check "$1: build" cmake --build --preset "$1" || return
  begin=$SECONDS
  rm -f "$counts"
  python3 scripts/run_tests.py "build/$1" "$counts"
  if read -r p f s 2>/dev/null <"$counts"; then
    passed=$((passed + p)) failed=$((failed + f)) skipped=$((skipped + s))
  else
    failed=$((failed + 1))
    echo "FAILED  $1: the tests could not be run"
  fi
  echo "        $1: tests ($((SECONDS - begin)) s)"
}

formatCheck() {
  find foundation geometry tools tests bench examples \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -P "$(nproc)" -n 20 clang-format --dry-run -Werror
}

ensurePackages || { echo "0 passed, 1 failed"; exit 1; }
mkdir -p "$logs"
check "map of the classes" scripts/check_map.py
check "format of the sources" formatCheck
buildAndTest dev
checkInstall build/dev
buildAndTest asan
[ "$skipped" -gt 0 ] && echo "$skipped tests skipped"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
