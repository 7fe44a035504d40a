# Shared by the scripts: where the project lies, and the packages it needs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Installs what packages.txt names and is not there yet. Only a missing package needs root.
install_packages() {
    local missing=() package
    while read -r package; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done < <(grep -v '^#' scripts/packages.txt)
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    local root=()
    [ "$(id -u)" -eq 0 ] || root=(sudo)
    "${root[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds one preset: build_preset NAME [TARGET...].
build_preset() {
    local preset=$1
    shift
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}
