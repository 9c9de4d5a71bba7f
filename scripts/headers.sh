#!/bin/bash
# Compiles every public header alone, as C++17, 20 and 23, with g++ and clang++, without a warning. Also tests that
# qzxmllib/QzXmlLib16.h names each of them and that none of them includes a header of a third party.
# usage: headers.sh [--update]   --update only writes qzxmllib/QzXmlLib16.h anew
. "$(dirname "$0")/common.sh"

public_headers()
{
    { git ls-files -co --exclude-standard 'qzxmllib/*.h'; echo qzxmllib/support/Export.h; } |
        grep -v -e 'Internal\.h$' -e '^qzxmllib/QzXmlLib16\.h$' | LC_ALL=C sort -u
}

all_in_one()
{
    echo "#pragma once"
    echo
    echo "/// Everything that the library offers. Written by scripts/headers.sh --update."
    echo
    public_headers | sed 's/.*/#include "&"/'
}

if [[ ${1:-} == --update ]]; then
    all_in_one > qzxmllib/QzXmlLib16.h
    exit
fi

diff -u qzxmllib/QzXmlLib16.h <(all_in_one) || { echo "headers.sh: run scripts/headers.sh --update" >&2; exit 1; }
if grep -nE '#include *[<"](expat|zlib|pcre2|gtest|gmock|benchmark|gmp)' $(public_headers | grep -v Export.h); then
    echo "headers.sh: a public header includes a header of a third party" >&2
    exit 1
fi

build=${BUILD_DIR:-build/release}
[[ -f $build/generated/qzxmllib/support/Export.h ]] || cmake --preset release > /dev/null
failed=0
check()
{
    "$1" "-std=$2" -fsyntax-only -x c++ -Wall -Wextra -Wshadow -Wconversion -Werror -I. "-I$build/generated" - \
        <<< "#include \"$3\"" || { echo "headers.sh: $3 fails with $1 -std=$2" >&2; return 1; }
}
export -f check
export build
{ public_headers; echo qzxmllib/QzXmlLib16.h; } | while read -r header; do
    for compiler in g++ clang++; do
        for standard in c++17 c++20 c++2b; do
            echo "$compiler $standard $header"
        done
    done
done | xargs -P "${JOBS:-2}" -L 1 bash -c 'check "$0" "$1" "$2"' || failed=1
[[ $failed -eq 0 ]] && echo "headers.sh: every public header compiles alone"
exit $failed
