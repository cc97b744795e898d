#!/usr/bin/env bash
# Installs every Debian package that building, testing and fuzzing Ovaro needs.
# Idempotent: when everything is present it prints nothing and changes nothing.
set -euo pipefail

packages=(
  build-essential
  cmake
  make
  g++
  clang
  clang-format
  libclang-rt-14-dev
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  libcli11-dev
  nlohmann-json3-dev
  qt6-base-dev
  qt6-svg-dev
  fonts-dejavu-core
  libopenmpi-dev
  openmpi-bin
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "bootstrap: installing ${missing[*]}" >&2
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then
    sudo="sudo"
  else
    echo "bootstrap: need root (or sudo) to install: ${missing[*]}" >&2
    exit 1
  fi
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
