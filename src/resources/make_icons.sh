#!/usr/bin/env bash
# Draws the two tagging sources' icons (16 and 32 pixels in one .ico each). The results are
# committed; run this again only to change them. Needs ImageMagick.
set -euo pipefail
cd "$(dirname "$0")"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# discora: a compact disc, silver with a blue label ring and a hole.
disc() {
  local s=$1 c=$(($1 / 2)) r=$(($1 / 2 - 1)) ring=$(($1 / 4)) hole=$(($1 / 10 + 1))
  convert -size "${s}x${s}" xc:none \
    -fill '#c9ced6' -stroke '#6b7380' -strokewidth 1 -draw "circle $c,$c $c,$((c - r))" \
    -fill '#2f6fd0' -stroke none -draw "circle $c,$c $c,$((c - ring))" \
    -fill none -draw "circle $c,$c $c,$((c - hole))" \
    -alpha on -channel A -fx "hypot(i-$c+0.5,j-$c+0.5) < $hole ? 0 : a" +channel \
    "PNG32:$tmp/disc$s.png"
}
# MusicBrainz: a rounded purple tile with an orange note-head.
tile() {
  local s=$1 e=$(($1 - 1)) q=$(($1 / 4))
  convert -size "${s}x${s}" xc:none \
    -fill '#ba478f' -draw "roundrectangle 0,0 $e,$e $q,$q" \
    -fill '#eb743b' -draw "ellipse $((s / 2 - 1)),$((s * 5 / 8)) $((s / 5)),$((s / 7)) 0,360" \
    -stroke '#eb743b' -strokewidth $((s / 16 + 1)) -draw "line $((s / 2 + s / 5 - 1)),$((s * 5 / 8)) $((s / 2 + s / 5 - 1)),$((s / 6))" \
    "PNG32:$tmp/tile$s.png"
}
for s in 16 32; do disc "$s"; tile "$s"; done
convert "$tmp/disc16.png" "$tmp/disc32.png" discora.ico
convert "$tmp/tile16.png" "$tmp/tile32.png" musicbrainz.ico
