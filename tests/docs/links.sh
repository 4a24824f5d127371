#!/bin/sh
# Every link between the documents leads to a file or folder that is there and, where it names one, to a heading of it.
# Argument: the folder of the project.
cd "$1" || exit 2
failed=0

# A document without its code.
prose() { awk '/^```/ { code = !code; next } !code && !/^    /' "$1"; }

# The headings of a document as links name them: lower case, without punctuation, with hyphens for blanks.
headings() {
  prose "$1" | grep '^#' | sed 's/^#* //' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

for document in *.md docs/*.md docs/design/*.md apps/*/*.md examples/*.md examples/*/*.md modelgen/*.md tools/*/*.md; do
  [ -f "$document" ] || continue
  for link in $(prose "$document" | grep -o '\](\([^)]*\))' | sed 's/^](//; s/)$//' | grep -v '^https\?:'); do
    target=${link%%#*}
    if [ -n "$target" ]; then target=$(dirname "$document")/$target; else target=$document; fi
    case $link in *#*) heading=${link#*#} ;; *) heading= ;; esac
    if [ ! -e "$target" ]; then
      echo "$document: $link leads nowhere"; failed=1
    elif [ -n "$heading" ] && ! headings "$target" | grep -qx -e "$heading"; then
      echo "$document: $link names no heading of $target"; failed=1
    fi
  done
done
exit $failed
