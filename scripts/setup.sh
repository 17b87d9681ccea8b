#!/usr/bin/env bash
# Installs the build tools and libraries the project needs, if they are missing.
# Uses Debian's packages only.
set -euo pipefail

packages=(cmake g++ make libgtest-dev libbenchmark-dev libpugixml-dev libcli11-dev libboost-dev clang libclang-rt-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing missing packages: ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
