# Sourced by the scripts of the root: installs those of Debian's packages that are missing.
need_packages() {
    missing=""
    for package in "$@"; do
        if ! dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing="$missing $package"
        fi
    done
    if [ -z "$missing" ]; then
        return
    fi
    sudo=""
    if [ "$(id -u)" != 0 ]; then
        sudo="sudo"
    fi
    echo "Installing$missing"
    $sudo apt-get update -qq
    # shellcheck disable=SC2086
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends $missing
}

build_packages="cmake ninja-build g++ g++-multilib ccache"
test_packages="googletest"
workbench_packages="libx11-dev libxext-dev libfreetype-dev fonts-dejavu-extra fonts-crosextra-carlito fonts-comic-neue"
window_test_packages="xvfb xdotool"
