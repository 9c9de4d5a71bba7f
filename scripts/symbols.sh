#!/bin/bash
# Compares the classes and functions that the shared library exports with the stored list: a name that goes away
# breaks programs, and one that appears unasked becomes a promise.
# usage: symbols.sh [--update]
. "$(dirname "$0")/common.sh"

library=${BUILD_DIR:-build/release}/qzxmllib/libQzXmlLib16.so
list=scripts/symbols.txt

# One line for each class (by its members, virtual table or type information) and for each free function. Signatures
# are left out, and so are instances of templates, which differ from compiler to compiler.
exported()
{
    nm -D --defined-only -C "$library" | sed -E 's/^[0-9a-f]* [A-Za-z] //; s/@@.*//' |
        sed -E 's/^(vtable|typeinfo name|typeinfo|VTT|guard variable|construction vtable) for //
                s/^(non-virtual|virtual) thunk to //' |
        grep -v '[<>]' | grep -v '^std::' |
        sed -E 's/\(.*$//; s/\[abi:[a-z0-9]+\]//g
                s/^((QzXmlLib16|QzXmlLib16Data)::[A-Za-z0-9_]+)::.*$/\1/; s/^(C[A-Za-z0-9_]+)::.*$/\1/' |
        grep -vE '^(_init|_fini|QzXmlLib16|QzXmlLib16Data)$' | LC_ALL=C sort -u
}

if [[ ${1:-} == --update ]]; then
    exported > "$list"
elif ! diff -u "$list" <(exported); then
    echo "symbols.sh: the exported names changed; if that is wanted, run scripts/symbols.sh --update" >&2
    exit 1
else
    echo "symbols.sh: $(wc -l < "$list") exported names, as listed"
fi
