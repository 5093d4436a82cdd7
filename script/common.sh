# Shared by the scripts beside it, which source it. It leaves them in the root of the repository.
# shellcheck shell=bash disable=SC2034
set -euo pipefail
unset CDPATH
calledFrom=$PWD
cd -P "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

# Debian's packages; docs/dependencies.md tells what each is for.
buildPackages=(g++ cmake ninja-build qt6-base-dev libarchive-dev libssl-dev libcurl4-openssl-dev qtkeychain-qt6-dev
    libmicrohttpd-dev qt6-tools-dev qt6-l10n-tools zlib1g-dev libbz2-dev liblzma-dev libgtest-dev libgmock-dev clang lld llvm)
runPackages=(file dbus-daemon ca-certificates)
testPackages=(openssl gnome-keyring softhsm2 libengine-pkcs11-openssl zip unzip dmg2img libfshfs-utils p7zip-full systemd libglib2.0-bin python3-dbus python3-boto3 python3-jwt
    python3-cryptography)
formatPackages=(clang-format)
lintPackages=(clang-tidy)
fuzzPackages=(libclang-rt-14-dev)
packagePackages=(dpkg-dev binutils xz-utils)

# A system without a locale would have Qt warn, and file names lose their letters.
[[ "${LC_ALL:-${LC_CTYPE:-${LANG-}}}" == *[Uu][Tt][Ff]* ]] || export LC_ALL=C.UTF-8

fail() { # MESSAGE
    printf '%s: %s\n' "script/${0##*/}" "$1" >&2
    exit 1
}

# Tells what goes on without disturbing what a script prints as its result.
say() { # MESSAGE
    printf '%s\n' "$1" >&2
}

# Runs a command whose output matters only when it fails.
quietly() { # COMMAND [ARGUMENT ...]
    local output status=0
    output=$(mktemp)
    "$@" >"$output" 2>&1 </dev/null || status=$?
    [[ $status == 0 ]] || cat "$output" >&2
    rm -f "$output"
    return "$status"
}

asRoot() { # COMMAND [ARGUMENT ...]
    if [[ $EUID == 0 ]]; then
        "$@"
    else
        sudo "$@"
    fi
}

missingPackages() { # PACKAGE ...
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed* ]] || printf '%s\n' "$package"
    done
}

# Installs what is missing of the packages. Does nothing, and needs no network, where nothing is.
installPackages() { # PACKAGE ...
    command -v dpkg-query >/dev/null || return 0
    local missing
    mapfile -t missing < <(missingPackages "$@")
    [[ ${#missing[@]} -gt 0 ]] || return 0
    [[ $EUID == 0 ]] || command -v sudo >/dev/null || fail "these packages have to be installed first: ${missing[*]}"
    say "Installing ${missing[*]}"
    [[ $EUID == 0 ]] || sudo --validate
    quietly asRoot apt-get --quiet update || say "Not every package list could be fetched"
    quietly asRoot env DEBIAN_FRONTEND=noninteractive apt-get --quiet --yes --no-install-recommends \
        -o DPkg::Lock::Timeout=300 install "${missing[@]}" || fail "the packages could not be installed"
}

# Configures a preset and builds it, or only the given targets of it.
buildPreset() { # PRESET [TARGET ...]
    local preset=$1
    shift
    installPackages "${buildPackages[@]}"
    if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER-} ]] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
        # Without these it keeps nothing that was compiled with precompiled headers.
        export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}
    fi
    say "Building $preset"
    quietly cmake --preset "$preset" || fail "the preset $preset could not be configured"
    quietly cmake --build --preset "$preset" ${1+--target "$@"} || fail "the preset $preset could not be built"
}

# Builds what a person runs: no test programs.
buildProgram() {
    buildPreset release src/all toolchain/all samples/all
}

versionOfSources() {
    sed -nE 's/^project\(Sealwright VERSION ([0-9.]+).*/\1/p' CMakeLists.txt
}

# Packs the sources of a commit. The bytes depend on the commit alone.
sourceArchive() { # COMMIT FILE
    git archive --format=tar --prefix="sealwright-$(versionOfSources)/" "$1" | gzip --no-name --best >"$2"
}
