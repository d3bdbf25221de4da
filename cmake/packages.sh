# What the project takes from Debian 12, and how it is installed. Sourced by ./run and ./test.

packages_build=(
  build-essential cmake ninja-build ccache pkg-config
  qt6-base-dev qt6-svg-dev libgl-dev
  libsqlite3-dev libcurl4-openssl-dev libpoppler-qt6-dev libqpdf-dev
  libpango1.0-dev libcairo2-dev
  rapidjson-dev libmodpbase64-dev zlib1g-dev
)
packages_run=(
  libqt6svg6 qt6-qpa-plugins qt6-wayland xdg-utils
  libreoffice-writer-nogui
  fonts-liberation2 fonts-inter fonts-dejavu-core fonts-droid-fallback fonts-urw-base35
  fonts-noto-core fonts-noto-cjk fonts-symbola
)
packages_test=(
  poppler-utils qpdf mupdf-tools pdftk-java sqlite3 unzip openssl
)
packages_bench=(
  poppler-utils qpdf pdftk-java curl openssl
)
packages_tidy=(git clang clang-format clang-tidy)
packages_fuzz=(clang libclang-rt-14-dev)

# install_missing PACKAGE...: says what it installs and skips what is there.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing from Debian: ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These packages are missing and there is neither root nor sudo to install them." >&2
      return 1
    }
    as_root=(sudo)
  fi
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq -o DPkg::Lock::Timeout=300
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq -o DPkg::Lock::Timeout=300 \
    --no-install-recommends "${missing[@]}" >/dev/null
}
