#!/bin/sh
# The exit status tells a wrong call from an error of a script; an entry that its input leaves unfinished is an error.
# Argument: the program.
program=$1
failed=0
expect() {
  [ "$2" -eq "$1" ] || { echo "expected the status $1, not $2: $3"; failed=1; }
}

"$program" --version >/dev/null; expect 0 $? --version
"$program" --nonsense 2>/dev/null; expect 2 $? --nonsense
"$program" -e 'error("no")' 2>/dev/null; expect 1 $? 'an error'
echo '1 + 1' | "$program" -i >/dev/null; expect 0 $? 'a whole entry'
said=$(echo 'function f()' | "$program" -i 2>&1); expect 1 $? 'an unfinished entry'
case $said in *"middle of an entry"*) ;; *) echo "said: $said"; failed=1 ;; esac
exit $failed
