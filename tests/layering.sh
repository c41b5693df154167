#!/usr/bin/env bash
# Reads every #include under src/ and fails on one that points up, and on headers that include each other in a circle.
#   tests/layering.sh               checks the project
#   tests/layering.sh --self-test   checks this script against small good and bad trees
set -euo pipefail
export LC_ALL=C

# What each folder may include, as patterns. A folder that has no row here is a failure.
declare -A mayInclude=(
  [base]='base/*'
  [host]='base/* host/*'
  [isa]='base/* isa/*'
  [layout]='base/* host/file_reader.h layout/*'
  [source]='base/* host/file_reader.h isa/* source/*'
  [output]='base/* host/console.h isa/* source/* output/*'
  [passes]='base/* host/* isa/* layout/* source/* output/* passes/*'
  [driver]='base/* host/* isa/* layout/* source/* output/* passes/* driver/*'
  [main.cpp]='*/*'
)

# allowed FOLDER HEADER
allowed() {
  local pattern patterns
  read -ra patterns <<<"${mayInclude[$1]}"
  for pattern in "${patterns[@]}"; do
    # shellcheck disable=SC2053  # the right side is a pattern
    [[ $2 == $pattern ]] && return 0
  done
  return 1
}

# Prints "file:line:directive" for every #include below the current folder.
listIncludes() {
  grep -rnE --include='*.h' --include='*.cpp' '^[[:space:]]*#[[:space:]]*include' . |
    sed 's|^\./||' | sort -t: -k1,1 -k2,2n
}

# judge FILE DIRECTIVE: prints what is wrong with one #include, or nothing.
judge() {
  local folder=${1%%/*} header
  if [[ -z ${mayInclude[$folder]:-} ]]; then
    echo "$folder is in no layer"
  elif [[ $2 =~ include[[:space:]]*\"([^\"]*)\" ]]; then
    header=${BASH_REMATCH[1]}
    if [[ ! -f $header || $header != */* ]]; then
      echo "no such header: \"$header\" (write \"folder/file.h\")"
    elif ! allowed "$folder" "$header"; then
      echo "$folder may not include \"$header\""
    fi
  elif [[ $2 =~ include[[:space:]]*\<([^\>]*)\> ]]; then
    header=${BASH_REMATCH[1]}
    if [[ -f $header ]]; then
      echo "<$header> is a header of this project: write \"$header\""
    elif [[ $header == *.h && $header != emmintrin.h && $folder != host ]]; then
      echo "<$header> is a header of the operating system: only host may include it"
    fi
  else
    echo "an #include that names no file"
  fi
}

# Reads the list of includes and prints those that break a rule.
findForbidden() {
  local file line directive verdict
  while IFS=: read -r file line directive; do
    verdict=$(judge "$file" "$directive")
    [[ -z $verdict ]] || echo "src/$file:$line: $verdict"
  done
}

# Reads the list of includes and prints the headers that form circles.
findCircles() {
  local pairs
  pairs=$(sed -nE 's/^([^:]*\.h):[0-9]+:[[:space:]#]*include[[:space:]]*"([^"]*)".*/\1 \2/p')
  awk 'NF == 2 && $1 == $2 {print "src/" $1 ": includes itself"}' <<<"$pairs"
  tsort <<<"$pairs" 2>&1 >/dev/null |
    sed -E 's/^tsort: -: .*/these headers include each other in a circle:/; s/^tsort: /  src\//' || true
}

# checkTree SRC: prints every breach and fails when there is one.
checkTree() {
  local includes breaches
  cd "$1"
  includes=$(listIncludes) || true
  if [[ -z $includes ]]; then
    echo "layering: no #include found in $1"
    return 1
  fi
  breaches=$(findForbidden <<<"$includes"; findCircles <<<"$includes")
  if [[ -n $breaches ]]; then
    echo "$breaches"
    return 1
  fi
  echo "layering: $(wc -l <<<"$includes") includes, none points up, no circle"
}

# makeGoodTree FOLDER
makeGoodTree() {
  mkdir "$1"/{base,host,source}
  touch "$1"/base/text.h "$1"/host/{console,file_reader}.h
  printf '#include %s\n' '<string>' '"base/text.h"' '"host/file_reader.h"' >"$1/source/line.h"
  printf '#include %s\n' '"source/line.h"' >"$1/source/expression.h"
  printf '#include %s\n' '"source/expression.h"' '"host/console.h"' >"$1/main.cpp"
}

# expect pass|fail TEXT FILE INCLUDE...: the verdict on a good tree whose FILE has these includes, and a text it prints.
expect() {
  local wanted=$1 text=$2 file=$3 tree output verdict=pass
  shift 3
  tree=$(mktemp -d -p "$scratch")
  makeGoodTree "$tree"
  printf '#include %s\n' "$@" >"$tree/$file"
  output=$(checkTree "$tree") || verdict=fail
  if [[ $verdict != "$wanted" || $output != *"$text"* ]]; then
    printf 'layering self-test: %s with %s: expected %s, "%s"; found %s:\n%s\n' \
      "$file" "$*" "$wanted" "$text" "$verdict" "$output"
    return 1
  fi
}

selfTest() {
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  expect pass '9 includes, none points up' source/line.cpp '"source/line.h"  // not "driver.h"' '<vector>  // "x"' '<map>'
  expect pass 'no circle' host/console.cpp '"host/console.h"' '<unistd.h>'
  expect pass 'no circle' source/line.h '<string>'
  expect fail 'src/base/text.cpp:2: base may not include "source/line.h"' base/text.cpp '<map>' '"source/line.h"'
  expect fail 'source may not include "host/console.h"' source/line.cpp '"host/console.h"'
  expect fail 'in a circle' source/line.h '"source/expression.h"'
  expect fail 'src/source/line.h: includes itself' source/line.h '"source/line.h"'
  expect fail 'no such header: "base/none.h"' source/line.cpp '"base/none.h"'
  expect fail 'no such header: "line.h"' source/line.cpp '"line.h"'
  expect fail '<base/text.h> is a header of this project' source/line.cpp '<base/text.h>'
  expect fail '<unistd.h> is a header of the operating system' source/line.cpp '<unistd.h>'
  expect fail 'extra.h is in no layer' extra.h '"base/text.h"'
  expect fail 'names no file' source/line.cpp 'HEADER'
  echo "layering: the self-test passes"
}

case ${1:-} in
  '') checkTree "$(dirname "${BASH_SOURCE[0]}")/../src" ;;
  --self-test) selfTest ;;
  *)
    echo "usage: tests/layering.sh [--self-test]" >&2
    exit 2
    ;;
esac
