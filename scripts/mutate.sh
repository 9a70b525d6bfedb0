#!/usr/bin/env bash
# Installs what is missing, then makes one mistake after the other in a copy of src/ and looks whether
# some test notices. The mistakes stand in tests/mutation/mutants.py.
#   mutate.sh [FIRST [LAST]]     only these of the list, counted from 1
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/tools.sh
scripts/install_tools.sh "${build_tools[@]}" "${native_tools[@]}" "${host_headers[@]}" \
  "${test_tools[@]}" python3
export PYTHONDONTWRITEBYTECODE=1
exec python3 tests/mutation/mutate.py build/mutation "$@"
