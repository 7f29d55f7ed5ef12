# What is cross-built and staged below build/deps. Sourced after common.sh, never run.
. "$root/scripts/lib/debian-source.sh"

# build_library NAME SOURCE OPTION...: cross-builds into build/deps what cannot be done without.
build_library() {
    cross_build "$deps" "$@" || fail "$1 does not build, see $deps/$1.log"
}

# Links to the header-only libraries alone: /usr/include itself would hide the compiler's headers.
stage_headers() {
    mkdir -p "$deps/headers"
    for library in boost spdlog fmt CLI; do
        ln -sfn "/usr/include/$library" "$deps/headers/$library"
    done
}

build_dependencies() {
    debian_fetch "$deps" libjsoncpp benchmark || fail "the sources cannot be fetched"
    debian_unpack "$deps" libjsoncpp
    debian_unpack "$deps" benchmark
    # JsonCpp leaves the DLL as part of its interface, so its objects carry the export marks.
    build_library jsoncpp "$deps/src/libjsoncpp" -DCMAKE_CXX_FLAGS=-DJSON_DLL_BUILD \
        -DJSONCPP_WITH_TESTS=OFF -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF \
        -DJSONCPP_WITH_PKGCONFIG_SUPPORT=OFF -DBUILD_OBJECT_LIBS=OFF
    build_library googletest /usr/src/googletest
    build_library benchmark "$deps/src/benchmark" -DBENCHMARK_ENABLE_TESTING=OFF \
        -DBENCHMARK_ENABLE_WERROR=OFF
    stage_headers
}
