#!/usr/bin/env bash
# Installs the Debian packages the build needs, only those missing.
set -euo pipefail

packages=(cmake ninja-build g++ clang pkg-config libpcre2-dev libcli11-dev
          nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev
          libclang-rt-14-dev llvm-14 ccache help2man)
# The programs' allocator (the runtime package: its -dev pulls in a
# libunwind whose unwind.h shadows the compilers' own).
packages+=(libtcmalloc-minimal4)
# The Python module, its tests and the Python benchmark's comparison parsers.
packages+=(pybind11-dev python3-dev python3-pytest python3-setuptools
           python3-wheel python3-pip python3-dateparser python3-babel)
# Extraction from pages (pelinor_extract): OCR, images, PDFs, test fonts.
packages+=(libtesseract-dev tesseract-ocr-eng libleptonica-dev
           libpoppler-cpp-dev fonts-dejavu-core poppler-utils)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed" \
    || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
