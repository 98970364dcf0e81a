# What the commands in this folder share. Source it first: it makes the repository root the current directory.
# shellcheck shell=bash

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [[ -t 1 ]]; then
    bold=$'\e[1m' red=$'\e[31m' plain=$'\e[0m'
else
    bold='' red='' plain=''
fi

# say TEXT: tells which step begins.
say()
{
    echo "${bold}==> $*${plain}"
}

# fail TEXT: reports an error and ends with status 1.
fail()
{
    echo "${red}$(basename "$0"): $*${plain}" >&2
    exit 1
}

# bad_usage TEXT: reports a wrong command line and ends with status 2.
bad_usage()
{
    echo "$(basename "$0"): $*; --help tells more" >&2
    exit 2
}

# need PACKAGE...: installs the Debian packages that are missing.
need()
{
    if ! command -v dpkg > /dev/null || ! command -v apt-get > /dev/null; then
        say "No apt-get here; expecting the equivalents of: $*"
        return
    fi
    local package missing=() root=()
    for package in "$@"; do
        if [[ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null)" != installed ]]; then
            missing+=("$package")
        fi
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    if ((EUID != 0)); then
        command -v sudo > /dev/null || fail "need root, or sudo, to install: ${missing[*]}"
        root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${root[@]}" apt-get update -qq || fail "apt-get update failed"
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" < /dev/null > /dev/null || fail "could not install: ${missing[*]}"
}

# need_source PACKAGE: fetches and unpacks the source of a Debian package to build/sources/PACKAGE, from where the machine gets its packages, whose
# settings stay as they are.
need_source()
{
    local to="build/sources/$1" work="$PWD/build/sources/apt" file
    [[ ! -d "$to" ]] || return 0
    command -v apt-get > /dev/null || fail "no apt-get here; expecting the source of $1 in $to"
    need dpkg-dev
    say "Fetching the source of $1"
    rm -rf "$work"
    mkdir -p "$work"/{parts,lists/partial,archives/partial,unpacked}
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [[ ! -f "$file" ]] || sed -n 's/^deb\([[:space:]]\)/deb-src\1/p' "$file" > "$work/parts/$(basename "$file" .list).list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ ! -f "$file" ]] || sed 's/^Types:.*/Types: deb-src/' "$file" > "$work/parts/$(basename "$file")"
    done
    local options=(-qq -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/parts" -o "Dir::State::lists=$work/lists"
        -o "Dir::Cache=$work" -o "APT::Sandbox::User=$(id -un)")
    apt-get "${options[@]}" update || fail "apt-get update failed for sources"
    (cd "$work/unpacked" && apt-get "${options[@]}" source --only-source "$1" > /dev/null) || fail "could not fetch the source of $1"
    mv "$work"/unpacked/*/ "$to"
    rm -rf "$work"
}

# build PRESET: configures and builds it.
build()
{
    say "Configuring ($1)"
    cmake --preset "$1"
    say "Building ($1)"
    cmake --build --preset "$1"
}

# What the preset mingw needs, besides g++, cmake, ninja-build and ccache.
# shellcheck disable=SC2034 # for whoever sources this
windows_packages=(g++-mingw-w64-x86-64-posix wine64 libz-mingw-w64-dev libgcrypt-mingw-w64-dev libgpg-error-mingw-w64-dev googletest
    libasio-dev libcli11-dev python3)

# start_wine: makes Wine's set-up below build/, and keeps its server until this script ends: programs start faster.
start_wine()
{
    local server=wineserver
    [[ ! -x /usr/lib/wine/wineserver64 ]] || server=/usr/lib/wine/wineserver64
    export WINEPREFIX="$PWD/build/wine" WINEDEBUG=-all
    say "Starting Wine (${WINEPREFIX#"$PWD/"})"
    mkdir -p "$WINEPREFIX"
    # shellcheck disable=SC2064 # the server as it is now
    trap "'$server' --kill || true" EXIT
    "$server" --persistent < /dev/null > /dev/null 2>&1 || true  # it may run already
    scripts/wine wineboot --init < /dev/null > /dev/null 2>&1 || fail "Wine does not start"
}
