#!/usr/bin/env bash
# Installs what is missing, then changes one small thing after the other in a copy of src/ and expects
# a test to fail. Ends with status 1 when a change goes unnoticed that tests/mutation/survivors.md does
# not explain.
#   mutate.sh [COUNT [SEED]]     how many changes, and which; 300 and 1 without arguments
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${native_tools[@]}" "${test_tools[@]}" python3
export PYTHONDONTWRITEBYTECODE=1
exec python3 tests/mutation/mutate.py build/mutation --count "${1:-300}" --seed "${2:-1}"
