#!/bin/sh
# usage: pages.sh PROJECT MANUAL_PAGES OUT
# Makes the pages of the site from the guides and the manual pages: links that lead out of the site
# lose their target, a manual page is its text.
set -eu
project=$1 manual=$2 out=$3
rm -rf "$out"
mkdir -p "$out"

# Links between guides lead to the pages here, whatever folder they lie in.
page() {
  sed -E -e 's#\]\((\.\./)*(docs/)?([a-z-]+\.md)\)#](\3)#g' \
    -e 's#\[([^]]+)\]\([^)]*(README\.md|LICENSE|FORMAT\.md|CHANGELOG\.md|CONTRIBUTING\.md|examples)\)#\1#g' \
    "$1" >"$out/$(basename "$1")"
}
page "$project/README.md"
for guide in "$project"/docs/*.md; do
  [ "${guide##*/}" = README.md ] || page "$guide"
done

{
  printf '# Manual pages {#manual}\n\n'
  for source in "$manual"/*.[17]; do
    name=$(basename "$source")
    name=${name%.*}
    printf -- '- @subpage manual-%s\n' "$name"
    {
      printf '# %s {#manual-%s}\n\n```text\n' "$name" "$name"
      groff -man -Tutf8 -rLL=100n -P-cbou "$source" | cat -s
      printf '```\n'
    } >"$out/manual-$name.md"
  done
} >"$out/manual.md"
