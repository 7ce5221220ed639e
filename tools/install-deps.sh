#!/usr/bin/env bash
# Installs every Debian package the project needs to build, test and
# benchmark. Idempotent: asks apt only when something is missing.
set -euo pipefail

packages=(
  cmake ninja-build g++          # build
  libssl-dev                     # SHA-256 for forecast seeds
  libsqlite3-dev                 # the store
  libicu-dev                     # calendars, time zones, Unicode text
  nlohmann-json3-dev             # JSON output, backups
  zlib1g-dev                     # raw DEFLATE inside ZIP and XLSX files
  libexpat1-dev                  # XML inside XLSX files
  qt6-base-dev                   # the desktop application
  qt6-charts-dev libqt6opengl6-dev  # the app's charts (Qt Charts needs the OpenGL module to configure)
  qt6-pdf-dev                    # the report preview (PDFs are written with Qt GUI's own writer)
  libqt6svg6                     # draws the app's SVG icon (window, About box)
  xdg-utils                      # e-mailing reports and packs through the desktop's mail program
  poppler-utils                  # tests read the PDFs back with pdftotext and pdftoppm
  xvfb xauth                     # tools/screenshots draws the app without a display
  libgtest-dev libgmock-dev      # tests
  libbenchmark-dev               # benchmarks
  python3-numpy                  # reference computations in tools/
  python3-openpyxl               # an independent XLSX writer and reader for tests
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo=sudo
echo "Installing: ${missing[*]}"
$sudo apt-get update -q
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
