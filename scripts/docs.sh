#!/usr/bin/env bash
# Installs what is missing, then makes HTML pages of the public headers in build/docs/html. A function,
# parameter or result without a description is an error.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${document_tools[@]}"
mkdir -p build/docs
doxygen docs/Doxyfile
echo "== build/docs/html/index.html"
