# Libraries cross-built from Debian's source packages. Sourced after common.sh, never run.

# debian_fetch FOLDER PACKAGE...: downloads source packages into FOLDER/src, without touching the
# machine's own package lists.
debian_fetch() {
    local folder=$1
    shift
    local private=$folder/apt
    mkdir -p "$private/lists/partial" "$private/sources.d" "$folder/src"
    if [ -f /etc/apt/sources.list.d/debian.sources ]; then
        sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources \
            >"$private/sources.d/debian.sources"
    else
        sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$private/sources.d/debian.list"
    fi
    local options=(
        -qq -o Dir::Etc::SourceList=/nonexistent -o "Dir::Etc::SourceParts=$private/sources.d"
        -o "Dir::State::Lists=$private/lists" -o APT::Sandbox::User=root
    )
    apt-get "${options[@]}" update
    (cd "$folder/src" && apt-get "${options[@]}" source --download-only "$@")
}

# debian_unpack FOLDER PACKAGE [MEMBER...]: the upstream tree of a fetched package, or these members
# of it, as FOLDER/src/PACKAGE.
debian_unpack() {
    local folder=$1 package=$2
    shift 2
    rm -rf "$folder/src/$package"
    mkdir "$folder/src/$package"
    tar -xf "$folder/src/$package"_*.orig.tar.* -C "$folder/src/$package" --strip-components=1 \
        ${1:+--wildcards "$@"}
}

# cross_build FOLDER NAME SOURCE OPTION...: builds a CMake project for Windows and installs it below
# FOLDER; what the build says goes to FOLDER/NAME.log.
cross_build() {
    local folder=$1 name=$2 source=$3
    shift 3
    say "cross-building $name"
    {
        cmake -S "$source" -B "$folder/build/$name" -G Ninja \
            -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$folder" -DBUILD_SHARED_LIBS=OFF "$@" &&
            cmake --build "$folder/build/$name" --parallel "$jobs" &&
            cmake --install "$folder/build/$name"
    } >"$folder/$name.log" 2>&1
}
