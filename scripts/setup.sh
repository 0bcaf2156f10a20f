# shellcheck shell=bash
# Sourced by run, test and bench: lists packages, installs the missing ones, and builds. Installed
# packages are left alone, so no network is needed once all are there.

# package_list NAME: prints the packages of a list on this system.
package_list() {
    case $(uname -s)-$1 in
    Linux-build) echo g++ cmake ninja-build pkg-config qt6-base-dev qt6-multimedia-dev \
        libqt6sql6-sqlite qt6-translations-l10n libsoxr-dev libpulse-dev ffmpeg \
        librsvg2-bin dpkg-dev file ;;
    Linux-demo)
        echo xvfb xdotool pulseaudio-utils python3 python3-numpy
        if is_desktop_on pipewire-pulse || is_installed pipewire-alsa; then
            package_list pipewire
        else
            echo pulseaudio
        fi
        ;;
    Linux-pipewire)
        if is_desktop_on pulseaudio; then
            echo "PipeWire is left out: it would replace this desktop's PulseAudio" >&2
        else
            echo pipewire pipewire-bin pipewire-pulse wireplumber dbus pulseaudio-utils
        fi
        ;;
    Linux-test)
        # Newer systems have no version 14, so the test of the format is left out there.
        case $(. /etc/os-release && echo "${VERSION_CODENAME:-}") in
        bookworm | noble) echo clang-14 clang-format-14 ;;
        *) echo clang ;;
        esac
        echo gobjc++ libgnustep-base-dev shellcheck \
            icnsutils python3 appstream desktop-file-utils lintian
        ;;
    Linux-clang) echo clang libclang-rt-dev ;;
    Linux-bench) echo pulseaudio libbenchmark-dev libsqlite3-dev ;;
    Darwin-build) # the package qt would bring in a browser engine
        echo qtbase qtmultimedia qttranslations libsoxr ffmpeg librsvg cmake ninja pkgconf ;;
    Darwin-test) echo shellcheck ;;
    esac
}

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# need LIST...: installs the packages of these lists that are missing.
need() {
    local list package missing=()
    case $(uname -s) in
    Linux) command -v dpkg-query >/dev/null ||
        fail "packages are installed with apt only; install what README.md lists by hand" ;;
    Darwin) command -v brew >/dev/null || fail "Homebrew is needed first: https://brew.sh" ;;
    *) fail "only Linux and macOS are supported" ;;
    esac
    for list in "$@"; do
        for package in $(package_list "$list"); do
            is_installed "$package" || missing+=("$package")
        done
    done
    ((${#missing[@]})) || return 0
    echo "Installing: ${missing[*]}"
    install_packages "${missing[@]}" || fail "could not install: ${missing[*]}"
}

is_installed() {
    if [[ $(uname -s) == Darwin ]]; then
        brew list --versions "$1" >/dev/null 2>&1
    else
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed* ]]
    fi
}

# is_desktop_on SERVER: whether this is a desktop with only that one installed of pulseaudio and
# pipewire-pulse. Installing the other one would replace the desktop's sound server.
is_desktop_on() {
    local other=pulseaudio
    [[ $1 != pulseaudio ]] || other=pipewire-pulse
    [[ -n ${XDG_CURRENT_DESKTOP:-} || -e /etc/X11/default-display-manager ]] &&
        is_installed "$1" && ! is_installed "$other"
}

install_packages() {
    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [[ $(uname -s) == Darwin ]]; then
        brew install "$@"
        return
    fi
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "run it as root, or install sudo, to install: $*"
        as_root=(sudo "${as_root[@]}")
    fi
    # Goes on if the update fails: the package lists of the last one may be enough.
    "${as_root[@]}" apt-get update -q || true
    # --no-remove: fails rather than remove one of the user's packages.
    "${as_root[@]}" apt-get install -q -y --no-remove --no-install-recommends "$@"
}

# drop_foreign_build FOLDER: removes a build folder that was configured elsewhere and came with a
# copied or moved checkout; CMake refuses its cache.
drop_foreign_build() {
    local source
    source=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$1/CMakeCache.txt" 2>/dev/null) || return 0
    [[ -n $source && $source != "$(pwd -P)" && $source != "$PWD" ]] || return 0
    echo "$1 was configured for $source: configuring it afresh"
    rm -rf "$1"
}

# build PRESET [CMAKE-OPTION...]: configures and builds into build/PRESET.
build() {
    local preset=$1
    shift
    drop_foreign_build "build/$preset"
    cmake --preset "$preset" "$@"
    cmake --build --preset "$preset" --parallel "$(getconf _NPROCESSORS_ONLN)"
}
