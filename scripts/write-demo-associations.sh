#!/bin/sh
# Writes the association table that points every Atari file type, and the BASIC emulator, at the
# emulator stand-in of a build, and the picture converter at the build's converter:
# write-demo-associations.sh BUILD_DIR
set -eu
[ $# -eq 1 ] || { echo "usage: $0 BUILD_DIR" >&2; exit 2; }
build=$(cd -- "$1" && pwd)
emulator="$build/tools/emulator/quaylight-emu"
converter="$build/tools/convert/quaylight-convert"
arcx="$build/tools/arcx/arcx"
[ -x "$emulator" ] || { echo "no emulator stand-in at $emulator" >&2; exit 1; }
[ -x "$converter" ] || { echo "no picture converter at $converter" >&2; exit 1; }
[ -x "$arcx" ] || { echo "no arcx at $arcx" >&2; exit 1; }

config="${XDG_CONFIG_HOME:-$HOME/.config}"
case "$config" in /*) ;; *) config="$HOME/.config" ;; esac
folder="$config/quaylight"
mkdir -p -- "$folder"

# The table holds shell text: paths are single-quoted there.
quote() { printf "'%s'" "$(printf '%s' "$1" | sed "s/'/'\\\\''/g")"; }
quoted=$(quote "$emulator")
table="$folder/associations.ini"
tmp="$table.tmp.$$"
{
    echo "; Which program opens each kind of file; %f stands for the file."
    echo "[Associations]"
    for ext in xex bin rom cas atr dcm xfd xfz atz pro a26 a52 a78 jag msa st lnx; do
        echo "$ext=$quoted %f"
    done
    echo "[Programs]"
    echo "Atari800=$quoted"
    echo "IrfanView=$(quote "$converter")"
    echo "arcx=$(quote "$arcx")"
} >"$tmp"
mv -f -- "$tmp" "$table"
echo "$table"
