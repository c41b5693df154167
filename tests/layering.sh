#!/usr/bin/env bash
# Reads every #include under src/ and fails on one that points up, and on headers that include each other in a circle.
#   tests/layering.sh               checks the project
#   tests/layering.sh --self-test   checks this script against a small tree with every mistake
set -euo pipefail
export LC_ALL=C

# What each folder may include, as the beginnings of paths. A folder that has no row here is a failure.
declare -A mayInclude=(
  [base]='base/'
  [host]='base/|host/'
  [isa]='base/|isa/'
  [layout]='base/|host/file_reader\.h|layout/'
  [source]='base/|host/file_reader\.h|isa/|source/'
  [output]='base/|host/console\.h|isa/|source/|output/'
  [passes]='base/|host/|isa/|layout/|source/|output/|passes/'
  [driver]='base/|host/|isa/|layout/|source/|output/|passes/|driver/'
  [inspect]='base/|host/|isa/|layout/|source/|output/|passes/|driver/|inspect/'
  [lsp]='base/|host/|isa/|layout/|source/|output/|passes/|driver/|inspect/|lsp/'
  [library]='base/|host/|isa/|layout/|source/|output/|passes/|driver/|inspect/|library/'
  [main.cpp]='.*/'
  [check_main.cpp]='.*/'
  [lsp_main.cpp]='.*/'
)

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
    elif [[ ! $header =~ ^(${mayInclude[$folder]}) ]]; then
      echo "$folder may not include \"$header\""
    fi
  elif [[ $2 =~ include[[:space:]]*\<([^\>]*)\> ]]; then
    header=${BASH_REMATCH[1]}
    if [[ -f $header ]]; then
      echo "<$header> is a header of this project: write \"$header\""
    elif [[ $header == *.h && ! $header =~ ^(emmintrin|stddef|stdint)\.h$ && $folder != host ]]; then
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
checkTree() (
  cd "$1"
  includes=$(listIncludes) || { echo "layering: no #include found in $1" && exit 1; }
  breaches=$(findForbidden <<<"$includes"; findCircles <<<"$includes")
  echo "${breaches:-layering: $(wc -l <<<"$includes") includes, none points up, no circle}"
  [[ -z $breaches ]]
)

selfTest() {
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  cd "$scratch"
  mkdir base host source
  touch base/text.h host/{console,file_reader}.h
  printf '#include %s\n' '<unistd.h>' '"base/text.h"  // not "driver.h"' >host/console.cpp
  echo '#include "base/text.h"' >extra.h
  echo '#include "source/line.h"' >source/expression.h
  printf '#include %s\n' '"source/expression.h"' '"source/line.h"' >source/line.h
  printf '#include %s\n' '"host/console.h"' '"text.h"' '<base/text.h>' '<unistd.h>' NAME >source/line.cpp
  diff <(checkTree . || echo failed) - <<'EOF'
src/extra.h:1: extra.h is in no layer
src/source/line.cpp:1: source may not include "host/console.h"
src/source/line.cpp:2: no such header: "text.h" (write "folder/file.h")
src/source/line.cpp:3: <base/text.h> is a header of this project: write "base/text.h"
src/source/line.cpp:4: <unistd.h> is a header of the operating system: only host may include it
src/source/line.cpp:5: an #include that names no file
src/source/line.h: includes itself
these headers include each other in a circle:
  src/source/expression.h
  src/source/line.h
failed
EOF
  echo "layering: the self-test passes"
}

if [[ ${1:-} == --self-test ]]; then
  selfTest
else
  checkTree "$(dirname "${BASH_SOURCE[0]}")/../src"
fi
