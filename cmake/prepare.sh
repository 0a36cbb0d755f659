# Shared by ./verdelis and ./test: installs what the machine lacks, configures and builds a preset.
# Sourced with the repository as working directory. Steps that have nothing to do print nothing.

packages="g++ cmake ninja-build ccache pkg-config qt6-base-dev libqt6svg6-dev libicu-dev libboost-dev \
unixodbc-dev odbcinst libsqliteodbc libxlsxwriter-dev libzip-dev libgtest-dev fonts-wqy-microhei"
test_packages="python3 python3-ezdxf python3-openpyxl xvfb xauth"

# A locale that can hold Chinese, where the environment has none.
case "${LC_ALL:-${LC_CTYPE:-${LANG:-}}}" in
*[Uu][Tt][Ff]*) ;;
*) export LC_ALL=C.UTF-8 ;;
esac

install_packages() {
    missing=""
    for package in "$@"; do
        case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" in
        *"ok installed"*) ;;
        *) missing="$missing $package" ;;
        esac
    done
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" = 0 ]; then
        as_root="env"
    elif command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
        as_root="sudo -n env"
    else
        echo "These packages are missing; install them with:" >&2
        echo "  sudo apt-get install --no-install-recommends$missing" >&2
        exit 1
    fi
    echo "Installing:$missing" >&2
    apt="$as_root DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300"
    if ! $apt install -y --no-install-recommends $missing >/dev/null 2>&1; then
        $apt update >&2 || exit 1
        $apt install -y --no-install-recommends $missing >&2 || exit 1
    fi
}

# build PRESET DIRECTORY [TARGET]
build() {
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    export CCACHE_NOHASHDIR=1 CCACHE_BASEDIR="$PWD"
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    if [ ! -f "$2/build.ninja" ]; then
        echo "Configuring $2" >&2
        cmake --preset "$1" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    fi
    # Nothing to do is the usual case and stays silent; otherwise ninja's own progress line is shown.
    if ninja -C "$2" -n ${3:-} 2>/dev/null | grep -q 'no work to do'; then
        return 0
    fi
    echo "Building $2" >&2
    if [ -t 2 ]; then
        ninja -C "$2" ${3:-} >&2 || exit 1
    else
        ninja -C "$2" ${3:-} >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    fi
}
