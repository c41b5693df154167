#!/usr/bin/env bash
# The version is written in src/base/version.h. What repeats it for readers and other programs must agree.
#   tests/version.sh               checks the project
#   tests/version.sh --self-test   checks that this script notices each place that disagrees
set -euo pipefail
export LC_ALL=C

# found FILE PATTERN: every version in the file at a place that the pattern describes; "none" when there is no such place.
found() { grep -oP "$2" "$1" | sort -u || echo none; }

# expectVersion FILE PATTERN VERSION
expectVersion() {
  local versions
  versions=$(found "$1" "$2")
  if [[ $versions != "$3" ]]; then
    echo "version: $1 says ${versions//$'\n'/ and } instead of $3"
    return 1
  fi
}

# checkTree FOLDER: prints each place that disagrees, and fails when one does.
checkTree() (
  cd "$1"
  version=$(found src/base/version.h ' version = "\K[0-9.]+')
  breaches=0
  expectVersion man/kiln-as.1 '^\.TH .*kiln\\-as \K[0-9.]+' "$version" || breaches=1
  expectVersion man/kiln-as.1 '/opt/kiln/\K[0-9.]+' "$version" || breaches=1
  expectVersion README.md 'kiln-as_\K[0-9.]+' "$version" || breaches=1
  for file in editors/*/package.json; do
    expectVersion "$file" '"version": "\K[^"]+' "$version.0" || breaches=1
  done
  ((breaches == 0)) || return 1
  echo "version: $version everywhere"
)

# expectBreach FILE OLD NEW: the check has to fail, and name the file, once OLD is NEW there.
expectBreach() {
  local tree report
  tree=$(mktemp -d -p "$scratch")
  cp -r --parents src/base/version.h man README.md editors "$tree"
  sed -i "s|$2|$3|" "$tree/$1"
  if report=$(checkTree "$tree") || [[ $report != *"$1"* ]]; then
    printf 'version self-test: %s says "%s", and what was said is:\n%s\n' "$1" "$3" "$report"
    return 1
  fi
}

selfTest() {
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  expectBreach man/kiln-as.1 'kiln\\-as [0-9.]*"' 'kiln\\-as 0.1"'
  expectBreach man/kiln-as.1 '/opt/kiln/[0-9.]*' '/opt/kiln/0.1'
  expectBreach README.md 'kiln-as_[0-9.]*' 'kiln-as_0.1'
  expectBreach editors/textmate/package.json '"version": "[0-9.]*"' '"version": "0.1.0"'
  expectBreach editors/textmate/package.json '"version"' '"revision"'
  echo "version: the self-test passes"
}

cd "$(dirname "${BASH_SOURCE[0]}")/.."
case ${1:-} in
  '') checkTree . ;;
  --self-test) selfTest ;;
  *)
    echo "usage: tests/version.sh [--self-test]" >&2
    exit 2
    ;;
esac
