#!/bin/bash
# install.sh CMAKE BUILD PREFIX: installs somewhere and moves the tree to PREFIX, where it must work as well.
set -euo pipefail

cmake=$1 build=$2 prefix=$3
rm -rf "$prefix" "$prefix.first"
"$cmake" --install "$build" --prefix "$prefix.first" >/dev/null
mv "$prefix.first" "$prefix"
