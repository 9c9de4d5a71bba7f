# Shared by the scripts of this folder: the root of the project as working directory, and how to build a preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# build_preset PRESET [CMAKE ARGUMENTS...]: configures and builds; ccache is used where it is installed. The second
# set of arguments, for the build, stands in the array BUILD_ARGS.
build_preset()
{
    local preset=$1
    shift
    local launcher=()
    if command -v ccache > /dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    cmake --preset "$preset" "${launcher[@]}" "$@"
    cmake --build "build/$preset" -j "${JOBS:-2}" "${BUILD_ARGS[@]}"
}
BUILD_ARGS=()

# use_comma_locale: makes a locale with a decimal comma for the tests where the machine has none.
use_comma_locale()
{
    if locale -a 2> /dev/null | grep -qi '^de_DE\.utf-\?8$'; then
        return
    fi
    local folder=$PWD/build/locales
    mkdir -p "$folder"
    [[ -d $folder/de_DE.UTF-8 ]] || localedef -i de_DE -f UTF-8 "$folder/de_DE.UTF-8"
    export LOCPATH=$folder
}
