# What the scripts share: the checkout's folder, progress, and a last line that says how it went. To be sourced first.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
script=$(basename "$0")
jobs=$(nproc)
current="starting"
verdict="done"
cd "$root"

# step TEXT: says what comes next; the last line names it if it fails.
step() {
  current=$*
  printf '\n==> %s\n' "$current"
}

# usage_error TEXT: ends the script for a wrong argument.
usage_error() {
  current=$*
  exit 2
}

# print_usage: the comment that the script opens with.
print_usage() {
  sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$root/scripts/$script"
  trap - EXIT
  exit 0
}

finish() {
  local code=$?
  if [ "$code" -eq 0 ]; then
    printf '\n%s: ok: %s (%d s)\n' "$script" "$verdict" "$SECONDS"
  else
    printf '\n%s: FAILED: %s (exit code %d, %d s)\n' "$script" "$current" "$code" "$SECONDS"
  fi
}
trap finish EXIT
