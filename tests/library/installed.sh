#!/usr/bin/env bash
# Uses libkiln as somebody who has installed it does: installed.sh BUILD_FOLDER WORK_FOLDER
# Only the functions of kiln.h may be visible in either library.
set -euo pipefail
build=$1
work=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

fail() {
  echo "installed.sh: $*" >&2
  exit 1
}

# expect TEXT COMMAND...: the command prints exactly this.
expect() {
  local expected=$1 printed
  printed=$("${@:2}")
  [[ $printed == "$expected" ]] || fail "$2 prints: $printed"
}

rm -rf "$work"
cmake --install "$build" --component library --prefix "$work/usr" >/dev/null
libraries=$(dirname "$(find "$work/usr" -name libkiln.a)")
declared=$(grep -oE '\bkiln_[a-z_]+\(' "$root/src/library/kiln.h" | tr -d '(' | sort -u)
for names in "$(nm -D --defined-only "$libraries/libkiln.so")" "$(nm -g --defined-only "$libraries/libkiln.a")"; do
  visible=$(awk 'NF == 3 { print $3 }' <<<"$names" | sort -u)
  [[ $visible == "$declared" ]] || fail "visible are: $visible"
done
readelf -d "$libraries/libkiln.so" | grep -q 'SONAME.*libkiln.so.0' || fail "no soname"

export LD_LIBRARY_PATH=$libraries PKG_CONFIG_PATH=$libraries/pkgconfig
findings="line 2: 'position' is not defined: it counts as 0
18 bytes"
read -ra flags < <(pkg-config --define-prefix --cflags --libs kiln)
cc -std=c11 -Wall -Wextra -Werror -pedantic "$root/examples/library/hello.c" "${flags[@]}" -o "$work/shared"
expect "$findings" "$work/shared"
cc "$root/examples/library/hello.c" -I "$work/usr/include" "$libraries/libkiln.a" -lstdc++ -lm -o "$work/static"
expect "$findings" "$work/static"
expect "0 ff ff 00 20 02 20 4c 00 20 e0 02 e1 02 00 20" python3 "$root/examples/library/hello.py"

mkdir "$work/project"
cat >"$work/project/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.21)
project(hello LANGUAGES C CXX)
find_package(kiln 0.61 REQUIRED)
foreach(kind kiln static)
  add_executable(\${kind} $root/examples/library/hello.c)
  target_link_libraries(\${kind} PRIVATE kiln::\${kind})
endforeach()
END
cmake -S "$work/project" -B "$work/project/build" -DCMAKE_PREFIX_PATH="$work/usr" >/dev/null
cmake --build "$work/project/build" >/dev/null
for kind in kiln static; do
  expect "$findings" "$work/project/build/$kind"
done
echo "libkiln: visible are $(wc -w <<<"$declared") functions; the examples work"
