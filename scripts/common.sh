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
