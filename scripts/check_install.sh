# Sourced by test.sh: installs a build to a folder of its own and uses it as a client does.

# Headers that a client must not need, because the libraries use these packages only inside.
thePrivateHeaders='pugixml|zstd|zlib|zconf|[Ee]igen|asio|qhull'

# clientWithCMake WORK PREFIX: configures, builds and runs the client through find_package.
clientWithCMake() {
  cmake -S tests/consumer -B "$1/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$2" -DCMAKE_BUILD_TYPE=Release &&
    cmake --build "$1/cmake" && "$1/cmake/client"
}

# clientWithPkgConfig WORK PREFIX: compiles and runs the same client with the flags of pkg-config alone.
clientWithPkgConfig() {
  local flags
  mkdir -p "$1/pkgconfig"
  flags=$(PKG_CONFIG_PATH="$2/lib/pkgconfig" pkg-config --cflags --libs zuGeometry) || return 1
  # shellcheck disable=SC2086 # flags are words
  g++ -std=c++17 -o "$1/pkgconfig/client" tests/consumer/client.cpp $flags -Wl,-rpath,"$2/lib" && "$1/pkgconfig/client"
}

# programOfReadme WORK PREFIX: the program that README.md shows compiles and prints what README.md says.
programOfReadme() {
  local flags printed shown
  mkdir -p "$1/readme"
  sed -n '/^```cpp$/,/^```$/{/^```/d;p}' README.md >"$1/readme/first.cpp"
  shown=$(sed -n '/^    g++ .*first.cpp/{n;s/^    //p}' README.md)
  flags=$(PKG_CONFIG_PATH="$2/lib/pkgconfig" pkg-config --cflags --libs zuGeometry) || return 1
  # shellcheck disable=SC2086 # flags are words
  g++ -std=c++17 -Wall -Wextra -Werror -o "$1/readme/first" "$1/readme/first.cpp" $flags -Wl,-rpath,"$2/lib" || return 1
  printed=$("$1/readme/first") && echo "printed: $printed" && echo "README:  $shown" && [ "$printed" = "$shown" ]
}

# headersStandAlone WORK PREFIX: every installed header compiles by itself and leads to no private package.
headersStandAlone() {
  local include=$2/include/zuGeometry header bad=0
  mkdir -p "$1/headers"
  cd "$include" || return 1
  for header in */*.h; do
    echo "#include \"$header\"" >"$1/headers/$(basename "$header").cpp"
  done
  cd "$OLDPWD" || return 1
  find "$1/headers" -name '*.cpp' -print0 |
    xargs -0 -P "$(nproc)" -I{} g++ -std=c++17 -Wall -Wextra -Werror -fsyntax-only -I"$include" -MD -MF {}.d {} || bad=1
  if grep -lE "^ *(/[^ ]*)?/usr/[^ ]*($thePrivateHeaders)" "$1"/headers/*.d; then
    echo "the headers above include one of: $thePrivateHeaders (a header for use inside is named *Private.h)"
    bad=1
  fi
  return $bad
}

# versionedNames PREFIX: libX.so -> soname -> libX.so.VERSION, and the soname is the one inside.
versionedNames() {
  local library link soname
  for library in zuFoundation zuGeometry; do
    link=$1/lib/lib$library.so
    soname=$(readelf -d "$link" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
    echo "$link: $soname -> $(basename "$(readlink -f "$link")")"
    [[ $soname =~ ^lib$library\.so\.[0-9]+$ && -e $1/lib/$soname ]] || return 1
    [[ $(basename "$(readlink -f "$link")") =~ ^$soname\.[0-9]+\.[0-9]+$ ]] || return 1
  done
}

# ownSymbols PREFIX: the libraries export no function or object of anyone else's; qHull() is ours too. Weak ones are instances of
# templates of the standard library and Boost, which clients share with us.
ownSymbols() {
  local strange
  strange=$(for library in zuFoundation zuGeometry; do
    nm -DC --defined-only "$1/lib/lib$library.so"
  done | grep -v '\bZu\|\bzu\|\bqHull(' | grep -vE '^[0-9a-f]+ [VWu] .*\b(std|boost|__gnu_cxx)::')
  [ -z "$strange" ] && return 0
  echo "$strange"
  return 1
}

# checkInstall BUILD: the checks above, each counting one.
checkInstall() {
  local work=$PWD/build/installed prefix=$PWD/build/installed/prefix
  rm -rf "$work"
  mkdir -p "$work"
  check "installation" cmake --install "$1" --prefix "$prefix" || return
  check "installed client with CMake" clientWithCMake "$work" "$prefix"
  check "installed client with pkg-config" clientWithPkgConfig "$work" "$prefix"
  check "program of the README" programOfReadme "$work" "$prefix"
  check "installed headers stand alone" headersStandAlone "$work" "$prefix"
  check "versioned library names" versionedNames "$prefix"
  check "exported symbols are our own" ownSymbols "$prefix"
}
