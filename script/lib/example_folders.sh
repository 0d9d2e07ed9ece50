# shellcheck shell=bash
# Made-up folders for the pictures of the window, the same each time. Their files have lengths and no content,
# so they take next to no space. Sourced, never run.

# file SIZE NAME: a file in the current folder, with the folders on the way.
file() {
  [[ $2 != */* ]] || mkdir -p -- "${2%/*}"
  truncate --size "$1" -- "$2"
}

# files COUNT SIZE FOLDER SUFFIX...: files of about SIZE, a few of them much larger, with the suffixes in turn.
files() {
  local count=$1 folder=$3 index length size state
  size=$(numfmt --from=iec "$2")
  state=$((${#folder} * 7919 + count))
  local -a suffixes=("${@:4}")
  mkdir -p -- "$folder"
  for ((index = 1; index <= count; ++index)); do
    # A small generator of its own, since RANDOM differs between releases of the shell.
    state=$(((state * 1103515245 + 12345) % 2147483648))
    length=$((size / 4 + size * (state / 65536 % 1000) / 700))
    ((state / 65536 % 17)) || length=$((length * 4))
    truncate --size "$length" -- "$folder/$(printf '%04d' "$index").${suffixes[index % ${#suffixes[@]}]}"
  done
}

# make_home FOLDER: somebody's home, about 85 GB in a thousand files.
make_home() (
  mkdir -p -- "$1" && cd -- "$1" || exit
  files 140 24M Pictures/2025/Alps raw jpg jpg
  files 90 9M Pictures/2025/Lisbon jpg
  files 110 6M Pictures/2024 jpg jpg heic png
  files 40 3M Pictures/Scans png pdf tif
  file 4300M Pictures/catalogue.db
  files 9 1900M Videos/Holidays mp4 mov
  files 24 420M Videos/Lectures mkv
  file 7300M "Videos/Concert in the park.mkv"
  files 60 34M Music/Albums/Quartets flac
  files 90 11M Music/Albums/Live mp3 ogg
  files 30 6M Music/Podcasts mp3
  files 45 2M Documents/Letters odt pdf
  files 30 7M Documents/Taxes pdf xlsx
  files 12 46M Documents/Talks odp pptx pdf
  file 310M Documents/thesis.pdf
  files 60 700K Projects/engine/src cpp h
  files 40 9M Projects/engine/build o a
  files 20 130M Projects/engine/build/bin so
  file 2400M Projects/engine/.git/objects/pack/pack-5d1c.pack
  files 80 1M Projects/website/node_modules js ts json
  files 25 5M Projects/website/static svg woff2 webp
  file 1900M Projects/website/backup.sql
  file 6200M Downloads/debian-live.iso
  file 3100M Downloads/maps-of-europe.zip
  files 25 60M Downloads deb zip pdf tar
  file 11800M "Machines/test bench.qcow2"
  file 5200M Machines/old-laptop.img
  files 70 4M .cache/thumbnails png
  files 50 22M .cache/browser bin
  file 900M .local/share/index.sqlite
  file 0 Documents/empty.txt
)

# make_deep FOLDER: folders in folders, whose names together are wider than any breadcrumb.
make_deep() (
  local name
  mkdir -p -- "$1" && cd -- "$1" || exit
  for name in Customers "Northern region" "Harbour extension 2025" Drawings "Second revision" \
    "Foundations and piles" "Checked by the engineer" Final; do
    mkdir -- "$name" && cd -- "$name" || exit
    files 3 40M . pdf dwg
  done
)

# make_odd FOLDER: names that a lesser program would trip over.
make_odd() (
  mkdir -p -- "$1" && cd -- "$1" || exit
  file 90M "$(printf 'a name as long as a name may be %.0s' {1..8} | cut -c1-251).txt"
  file 85M $'two\nlines.txt'
  file 80M $'a\ttab and \x1b an escape.txt'
  file 75M $'not \xff\xfe UTF-8 \xc3\x28.dat'
  file 70M 'صور من العطلة الصيفية.jpg'
  file 65M 'תמונות מהחופשה.png'
  file 60M '夏休みの写真 — 东京 서울.jpg'
  file 55M '🏔️ climbing 👩‍👩‍👧 holiday 🎉.mp4'
  file 50M $'e\u0301te\u0301, Z\u0351\u036b\u0343a\u0328l\u0321g\u0323o\u0300.md'
  file 45M '   '
  file 40M $'\u00a0\u2003\u200b'
  file 35M '--help'
  file 30M '.hidden'
  file 25M 'no suffix'
  file 20M 'UPPER.JPG'
  file 15M 'two.dots.tar.gz'
  file 10M 'ends with a dot.'
  file 9M 'a suffix.that goes on and on and on for longer than any column'
  file 8M $'\u202eright to left override.txt'
  file 0 'nothing in it.txt'
  file 12M "a folder with a name that goes on and on and on, well beyond its column/inside.txt"
)

# make_extremes FOLDER: from nothing to more than any disk holds.
make_extremes() (
  mkdir -p -- "$1" && cd -- "$1" || exit
  file 7T huge.img
  file 1T large.img
  file 1G usual.iso
  file 1K small.txt
  file 1 one-byte.txt
  file 0 nothing.txt
  mkdir "an empty folder"
)
