#!/usr/bin/env bash
# Draws the program's icon, src/desktop/resources/quorvex.ico, with
# ImageMagick: a white envelope on the status band (its colour #4488BB,
# darkest at the top and bottom edges, as the band is painted), on the
# windows' dark background, at every size Windows asks for. Each size is
# drawn on its own pixel grid, so that the small ones stay sharp.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
out=$here/src/desktop/resources/quorvex.ico
command -v convert >/dev/null || { echo "draw-icon.sh: ImageMagick's convert is missing" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

band=#4488BB      # the band's colour
edge=#125689      # the band 50 darker, its top and bottom rows
back=#182838      # the windows' background
paper=#E6EEF5     # the windows' text colour

sizes=(16 20 24 32 40 48 64 256)
pngs=()
for s in "${sizes[@]}"; do
  # Sizes in pixels, rounded; lines at least one pixel wide.
  px() { awk -v s="$s" -v f="$1" 'BEGIN { v = s * f; printf "%d", v + 0.5 }'; }
  line=$(( s / 16 > 1 ? s / 16 : 1 ))
  r=$(px 0.18)
  # The band: two gradients meeting at the middle, clipped to a rounded
  # square on the dark background.
  half=$(( s / 2 ))
  convert -size "${s}x${half}" "gradient:$edge-$band" \
    \( -size "${s}x$(( s - half ))" "gradient:$band-$edge" \) -append \
    "$work/band.png"
  convert -size "${s}x${s}" xc:none -fill white \
    -draw "roundrectangle 0,0 $(( s - 1 )),$(( s - 1 )) $r,$r" "$work/mask.png"
  convert "$work/band.png" "$work/mask.png" -alpha off -compose CopyOpacity \
    -composite "$work/tile.png"
  # The envelope, its flap drawn in the band's dark edge colour.
  x0=$(px 0.19) x1=$(( s - 1 - $(px 0.19) ))
  y0=$(px 0.30) y1=$(( s - 1 - $(px 0.28) ))
  mx=$(awk -v s="$s" 'BEGIN { printf "%.1f", (s - 1) / 2 }')
  my=$(px 0.56)
  in=$(( line ))
  # A line of even width is centred between two pixels, to cover them
  # whole.
  o=$(( line % 2 == 0 ? 5 : 0 ))
  convert "$work/tile.png" \
    -fill "$paper" -stroke "$back" -strokewidth "$line" \
    -draw "rectangle $x0.$o,$y0.$o $x1.$o,$y1.$o" \
    -fill none -stroke "$edge" -strokewidth "$line" \
    -draw "stroke-linecap round stroke-linejoin round polyline $(( x0 + in )),$(( y0 + in )) $mx,$my $(( x1 - in )),$(( y0 + in ))" \
    -depth 8 "$work/icon-$s.png"
  pngs+=("$work/icon-$s.png")
done
convert "${pngs[@]}" "$out"
echo "draw-icon.sh: wrote $out"
identify "$out"
