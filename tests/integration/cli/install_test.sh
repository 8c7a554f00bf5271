#!/bin/sh
# `cmake --install` into a temporary prefix, the tree then moved elsewhere: the program runs from
# any folder, loads the component and the host's library from the moved tree, and the manual
# page holds the --help text. Usage: install_test.sh BUILD_DIR
set -eu
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved"
prefix=$work/moved
cd /

about=$("$prefix/bin/tessellon" --profile "$work/profile" about)
echo "$about" | grep -qx "module: $prefix/lib/tessellon/sonatag2.so" || { echo "component not from the prefix: $about"; exit 1; }
echo "$about" | grep -qx "installation check: ok" || { echo "installation check: $about"; exit 1; }
ldd "$prefix/bin/tessellon" | grep -q "tunehall_shared.so => $prefix/" || { ldd "$prefix/bin/tessellon"; exit 1; }

# Every line of --help, as man shows it (no hyphenation, no justification; "Commands:" is the
# section COMMANDS).
man_text=$(MANWIDTH=200 man --nh --nj -l "$prefix/share/man/man1/tessellon.1" 2>/dev/null)
"$prefix/bin/tessellon" --help | tail -n +2 | sed 's/^ *//; s/ *$//; /^[A-Z][A-Za-z ]*:$/{s/:$//; y/abcdefghijklmnopqrstuvwxyz/ABCDEFGHIJKLMNOPQRSTUVWXYZ/}' |
    grep -v '^$' | while IFS= read -r line; do
    echo "$man_text" | sed 's/^ *//; s/ *$//' | grep -qxF -- "$line" || { echo "not in the manual page: $line"; exit 1; }
done
for completion in share/bash-completion/completions/tessellon share/zsh/site-functions/_tessellon; do
    test -s "$prefix/$completion" || { echo "missing $completion"; exit 1; }
done
bash -n "$prefix/share/bash-completion/completions/tessellon"
echo ok
