#!/usr/bin/env bash
# Makes the pictures of docs/images: each view of the station in a window manager's frame.
# bench/pictures.sh BIN DPI [WIDTH HEIGHT [FOLDER]]: the programs' folder, where they are installed (cmake --install
# build/release --prefix /usr/local), so that no picture shows a path of the work on them; the screen, 1366×768 times
# DPI/96 unless given. At 96 dpi a picture is called VIEW.png, at another VIEW-DPI.png. Needs poppler-utils and a compiler.
set -euo pipefail
bin=$(readlink -f "$1") dpi=$2 root=$(dirname "$(readlink -f "$0")")/..
# The pictures show a cooperative's machine, not the one that makes them: name, /srv and kernel are its own.
if [ -z "${studio:-}" ]; then
  [ "$(id -u)" = 0 ] || own=--map-root-user
  studio=1 exec unshare --uts --mount ${own:-} bash "$0" "$@"
fi
hostname caisse
source "$root/tests/qt/desk.sh"
rmdir "$work"
mount -t tmpfs none /srv
work=/srv/cave
mkdir $work
under=(env LD_PRELOAD=$work/kernel.so)
cc -shared -fPIC -x c - -o $work/kernel.so <<'KERNEL'
#include <string.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>
int uname(struct utsname* of) {
  long result = syscall(SYS_uname, of);
  strcpy(of->release, "6.1.0-26-amd64");
  return (int)result;
}
KERNEL
width=${3:-$((1366 * dpi / 96))} height=${4:-$((768 * dpi / 96))} out=${5:-$root/docs/images}
suffix=$([ "$dpi" = 96 ] || echo "-$dpi")
desk_start "$width" "$height" "$dpi"
mkdir -p "$HOME/.config/openbox"
desk_manager
# The loads are a morning's: whatever time it is, the station's clock says half past ten.
late=$(((10#$(date -u +%H) * 60 + 10#$(date -u +%M)) - (10 * 60 + 30)))
[ $late -le 720 ] || late=$((late - 1440)) # half a day at most
export TZ=$(printf 'CAVE%s%d:%02d' "$([ $late -ge 0 ] || echo -)" $((${late#-} / 60)) $((${late#-} % 60)))
desk_base 9600 2000
line=/dev/rg80 # where it may be made: a name that says nothing of this machine
ln -sf "$work/rg80" $line 2>/dev/null && sed -i "s|^Port=.*|Port=$line|" "$work/tarvel.ini"
day=$(date +%d%m%y)
desk_loads
sed -i 's/^0008/!bruit &/' "$work/loads"
echo "!checksum 0009${day}101510290001020001020011000000050112413905003" >>"$work/loads"
terminal 9600 --chargements "$work/loads" --f6
printf '[Tarvel]\nDuréeBoîtes=1\n' >>"$work/tarvel.ini"
start 1
# A window with its frame, of the whole screen's picture: one that reaches over an edge is shown as it is seen.
view() {
  sleep 1
  eval "$(place "$1")"
  local sides left right top bottom
  sides=$(xprop -id "$(window "$1")" _NET_FRAME_EXTENTS | sed 's/.*= //; s/,//g')
  read -r left right top bottom <<<"$sides"
  # xdotool counts the frame's left and top twice.
  import -window root -crop $((WIDTH + left + right))x$((HEIGHT + top + bottom))+$((X - 2 * left))+$((Y - 2 * top)) \
    +repage "$out/$2$suffix.png"
}
main='^Tarvel – réception – '
nine() { [ "$(grep -c '^réponse reçue' "$work/rg80.txt")" -ge 9 ]; }
await "nine loads" nine
await "end of the box" gone '^RG80 Ombrey$'
view "$main" main
press "$main" alt+l
view "$main" line
await "monitoring window" shown
sleep 3
view '^Liste des chargements$' monitoring-errors
eval "$(place '^Liste des chargements$')"
xdotool mousemove --window "$(window '^Liste des chargements$')" $((15 * dpi / 96)) $((HEIGHT * 3 / 4)) click 1
view '^Liste des chargements$' monitoring
press '^Liste des chargements$' Escape
kill $station && wait $station || true
kill $rg80 && wait $rg80 || true
# A load that takes over a number, and one that is refused; then polls so seldom that its box is gone meanwhile.
{
  echo "0001${day}084510220002100003050050333333050113112105007"
  echo "0010${day}103010410001010001010011000000050111x21310012"
} >"$work/loads"
python3 -c 'import sqlite3, sys
base = sqlite3.connect(sys.argv[1])
base.execute("INSERT INTO Station SELECT 2, (?), Vue FROM Station", ("quai-nord",))
base.commit()' "$work/cave.db"
terminal 9600 --chargements "$work/loads"
sed -i 's/interrogation=2000/interrogation=20000/; s/DuréeBoîtes=1/DuréeBoîtes=5/' "$work/tarvel.ini"
start 2
await "box about the refused load" seen '^RG80 Ombrey$'
view '^RG80 Ombrey$' box
await "end of the box" gone '^RG80 Ombrey$'
for tab in r:refused i:unread c:archive u:journal n:stations; do
  press "$main" alt+${tab%:*}
  view "$main" ${tab#*:}
done
# What a key of a menu, and one in it, lead to. A box that comes up meanwhile may take a key.
shut() { gone "$1" || { press "$1" Escape 2>/dev/null; sleep 0.5; false; }; }
dialog() {
  await "$4" pick "$1" "$2" "$3"
  view "$3" "$4"
  await "closed $4" shut "$3"
}
dialog alt+s d '^Diagnostic$' diagnostic
dialog alt+s b '^Bordereau de la journée$' slip-dialog
dialog alt+s t "^Ticket d'un chargement$" ticket-dialog
dialog alt+s e '^Exporter les chargements$' export
dialog alt+s s '^Sauvegarder la base$' backup
dialog alt+a g "^Guide de l'opérateur$" guide
dialog alt+a p '^À propos$' about
dialog alt+s c '^Port du RG80$' port
for paper in bordereau:slip "ticket 4:ticket"; do
  "$bin/tarvel" --base "$work/cave.db" --${paper%:*} "$work/${paper#*:}.pdf" >/dev/null
  pdftoppm -png -singlefile -r "$dpi" "$work/${paper#*:}.pdf" "$out/${paper#*:}$suffix"
done
kill $station && wait $station || true
kill $rg80 && wait $rg80 || true
sed -i s/Bauds=9600/Bauds=300/ "$work/tarvel.ini"
terminal 300 --f6
start 3
await "transfer window" pick alt+g c '^Chargement des données vers le RG80$'
view '^Chargement des données' transfer
press '^Chargement des données' alt+t
await "progress" seen "^Avancement de l'envoi$"
await "a second file" grep -q 'fichier 1.*prêt' "$work/rg80.txt"
view "^Avancement de l'envoi$" progress
press "^Avancement de l'envoi$" alt+a
kill $station && wait $station || true
rm -f $line
echo "done"
