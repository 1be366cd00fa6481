# Sourced by the other scripts, which run at the root of the source tree.

# Prints the packages of the list that are not installed, one a line.
missingPackages() {
  local wanted installed
  wanted=$(sed 's/#.*//' scripts/packages.txt | tr -s ' \t' '\n' | sed '/^$/d' | sort -u)
  # shellcheck disable=SC2086 # one argument for each package
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null | sed -n 's/^installed //p' | sort -u)
  comm -23 <(echo "$wanted") <(echo "$installed")
}

# Installs what is missing; asks apt nothing when nothing is.
ensurePackages() {
  if ! command -v dpkg-query >/dev/null; then
    echo "$0: not a Debian system, so what scripts/packages.txt lists is taken to be here" >&2
    return 0
  fi
  local missing asRoot=()
  missing=$(missingPackages | tr '\n' ' ')
  [ -z "$missing" ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "$0: missing packages, to be installed as root with apt-get install: $missing" >&2
      return 1
    fi
    asRoot=(sudo)
  fi
  echo "installing $missing"
  "${asRoot[@]}" apt-get -qq update
  # shellcheck disable=SC2086 # one argument for each package
  if ! "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends install $missing >/dev/null; then
    echo "$0: apt-get could not install: $missing" >&2
    return 1
  fi
}
