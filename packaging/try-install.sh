#!/usr/bin/env bash
# Installs a build folder under a prefix of its own and lets the installed programs work. $1: the build folder.
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >"$prefix/log" 2>&1 || { cat "$prefix/log"; exit 1; }
cd "$prefix"
export XDG_CONFIG_HOME="$prefix/config"
bin/rg80 --version
bin/tarvel --creer-base cave.db --exemple
printf '[PlugInOmbrey]\nPort=%s\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\n' "$prefix/none" >site.ini
# The button is the plug-in's: it was found in the library folder.
bin/tarvel --base cave.db --ini site.ini --console --duree 0 | grep 'commande « *bouton'
[ ! -e bin/PlgInOmbrey.so ]
for file in PlgInOmbrey.so tarvel rg80 ombrey@.service site.ini; do
  [ -n "$(find . -name "$file")" ] || { echo "missing: $file" && exit 1; }
done
while IFS=: read -r document link; do
  [ -e "$(dirname "$document")/$link" ] || { echo "$document links $link, which isn't installed" && exit 1; }
done < <(grep -roP --include='*.md' '\]\(\K(?!https?:)[^)#]+' .)
