#!/usr/bin/env bash
# Cuts the samples' fonts out of Debian's, anew. Only needed when a sample text gains a character that they lack.
# Wants the packages fonts-droid-fallback, fonts-noto-core and libharfbuzz-bin.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

noto=/usr/share/fonts/truetype/noto
droid=/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf

# Basic Latin and Latin-1, Latin Extended-A, Vietnamese, Greek, Cyrillic, and general punctuation.
european=20-7E,A0-17F,1A0,1A1,1AF,1B0,1EA0-1EF9,386-3CE,401-45F,490,491,2010-2026,20AC
# Arabic letters, full stop and comma, and what else stands in a line of Arabic.
arabic=20,21,2E,60C,61F,621-63A,641-64A

cut() { hb-subset --no-hinting --name-IDs=0-6,13,14 --drop-tables+=GPOS,GDEF,kern,vhea,vmtx,VORG,DSIG "$@"; }

cut --unicodes=$european --layout-features= --output-file=NotoSans.ttf $noto/NotoSans-Regular.ttf
cut --unicodes=20-7E,A3,A7,B0,2013,2014,2018,2019,201C,201D --layout-features= --output-file=NotoSerif.ttf \
    $noto/NotoSerif-Regular.ttf
cut --unicodes=20-7E,A3,2013 --layout-features= --output-file=NotoSerif-Bold.ttf $noto/NotoSerif-Bold.ttf
cut --unicodes=$arabic --layout-features=init,medi,fina,isol,rlig --output-file=NotoNaskhArabic.ttf \
    $noto/NotoNaskhArabic-Regular.ttf
cut --text='简体中文日本語欢迎光临！早餐时间为七点至十点。祝您住得愉快。，ようこそ朝食は時から十までですどうぞごゆっくり、 ' \
    --layout-features= --output-file=DroidSansFallback.ttf $droid
