#!/usr/bin/env bash
# Tagwright's CSS checker.
#
#   validator.sh [options...] FILE
#
# Validates FILE with css-tree (validator.js beside this script says how). There are no options;
# any given is ignored with a note. Exit status: 0 clean, 1 errors found, 127 when Node.js or
# css-tree is not installed.
set -u

install_hint='sudo apt install nodejs node-css-tree'
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
node=$(command -v node || command -v nodejs) || {
  echo "validator.sh: Node.js is not installed; install it with: $install_hint"
  exit 127
}
# Debian's node finds Debian's css-tree by itself, a node from elsewhere does not; a css-tree
# in node_modules beside this script comes first.
export NODE_PATH="$here/node_modules${NODE_PATH:+:$NODE_PATH}:/usr/share/nodejs:/usr/lib/nodejs"
exec "$node" "$here/validator.js" "$@"
