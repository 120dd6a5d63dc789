# Shared by the scripts: the Debian packages the build needs, installed when
# missing, and the build folder. Source it; do not run it.

QXFB_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
QXFB_BUILD_DIR="${QXFB_BUILD_DIR:-$QXFB_ROOT/build}"
QXFB_JOBS="${QXFB_JOBS:-$(nproc 2>/dev/null || echo 2)}"
QXFB_PACKAGES=(cmake ninja-build g++ mold ccache libgtest-dev libbenchmark-dev
    qt6-base-dev qt6-qpa-plugins fonts-dejavu-core adwaita-icon-theme libsqlite3-dev libssl-dev
    nlohmann-json3-dev libvalijson-dev libcli11-dev libasio-dev)

# Installs the packages of the list that are not installed yet, with one
# apt-get update before the first install.
qxfb_ensure_packages() {
    local missing=() package
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "missing packages ${missing[*]}: run as root or install sudo" >&2; return 1; }
        sudo=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Ninja for a new build folder; one made earlier keeps the generator it has.
qxfb_configure() {
    local generator=()
    [ -f "$QXFB_BUILD_DIR/CMakeCache.txt" ] || generator=(-G Ninja)
    cmake -S "$QXFB_ROOT" -B "$QXFB_BUILD_DIR" "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
}
