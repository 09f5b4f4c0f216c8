#!/usr/bin/env bash
# The Debian package as a user gets it: made by CPack from a release build, its control fields and
# files checked, its desktop entry, metainfo and manual pages linted; then, as root, installed with
# apt, run from /usr/bin on a generated clip, and removed again unless it was installed before.
#
#   bash tests/app/package_test.sh BUILD_DIR      (a built release tree)
set -uo pipefail
build=$(realpath "$1")
source "$(dirname "$0")/checks.sh"
source_dir=$(realpath "$(dirname "$0")/../..")
id=org.morvane.Morvane
preset="MP4 - MPEG-4 320 x 240 small"

rm -rf "$build/package"
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$build/package" >"$work/cpack.log" 2>&1
rc=$?
shopt -s nullglob
debs=("$build"/package/morvane_*.deb)
shopt -u nullglob
[ $rc -eq 0 ] && [ ${#debs[@]} -eq 1 ]; check "cpack makes one package" $?
if [ ${#debs[@]} -ne 1 ]; then
    cat "$work/cpack.log"
    finish
    exit
fi
deb=${debs[0]}
echo "package: $deb, $(du -k "$deb" | cut -f1) KiB"

version=$("$build/app/morvane-cli" --version | awk '{print $2}')
arch=$(dpkg --print-architecture)
[ "$(basename "$deb")" = "morvane_${version}_${arch}.deb" ]
check "the package is named morvane_<program version>_<architecture>.deb" $?

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = morvane ] && [ "$(field Version)" = "$version" ] && [ "$(field Section)" = video ] &&
    [ "$(field Architecture)" = "$arch" ] && field Maintainer | grep -q '<.*@.*>' &&
    [ "$(field Description | wc -l)" -gt 3 ]
check "control: name, version, section, architecture, maintainer, long description" $?
depends=$(field Depends)
echo "Depends: $depends"
# ffmpeg is the merge's child program; the rest must come from the programs' own links.
for wanted in ffmpeg 'libqt6widgets6' 'libqt6gui6' 'libqt6svg6' 'libqt6network6' 'libmpv[0-9]+' \
    'libavcodec[0-9]+' 'libavformat[0-9]+' 'libavfilter[0-9]+' 'libswscale[0-9]+' 'libopencv-imgproc[0-9.]+' \
    'libc6'; do
    echo "$depends" | grep -Eq "(^|, )$wanted( |,|$)"; check "depends on $wanted" $?
done

# Exactly these files: the four programs but not the effect sheet tool, nothing outside /usr.
dpkg-deb -c "$deb" | awk '$1 !~ /^d/ {print $6}' | sort >"$work/files"
{
    for program in morvane morvane-cli morvane-encode morvane-table; do echo "./usr/bin/$program"; done
    echo "./usr/share/applications/$id.desktop"
    for size in 16 24 32 48 64 128 256; do echo "./usr/share/icons/hicolor/${size}x${size}/apps/$id.png"; done
    echo "./usr/share/icons/hicolor/scalable/apps/$id.svg"
    for program in morvane morvane-cli morvane-encode morvane-table; do echo "./usr/share/man/man1/$program.1.gz"; done
    echo "./usr/share/metainfo/$id.metainfo.xml"
} | sort >"$work/expected"
diff "$work/expected" "$work/files"; check "the package holds exactly the programs, entry, icons, pages and metainfo" $?
dpkg-deb -c "$deb" | awk '$1 ~ /^d/ {print $6}' | grep -qx './usr/share/morvane/'
check "the package holds the program folder share/morvane" $?

root="$work/root"
dpkg-deb -x "$deb" "$root"
for program in morvane morvane-cli morvane-encode morvane-table; do
    file -b "$root/usr/bin/$program" | grep -q 'ELF.*, stripped'; check "$program is shipped stripped" $?
done
for size in 16 24 32 48 64 128 256; do
    file -b "$root/usr/share/icons/hicolor/${size}x${size}/apps/$id.png" | grep -q "^PNG image data, $size x $size,"
    check "the ${size}x${size} icon is a PNG of that size" $?
done
"$root/usr/bin/morvane-cli" --version >"$work/out" 2>&1 && [ "$(cat "$work/out")" = "Morvane $version" ]
check "morvane-cli runs from an unpacked tree" $?

entry="$root/usr/share/applications/$id.desktop"
desktop-file-validate "$entry" >"$work/lint" 2>&1 && [ ! -s "$work/lint" ]
check "desktop-file-validate passes the entry with nothing to say" $?
cat "$work/lint"
grep -qx "Exec=morvane %f" "$entry" && grep -qx "Icon=$id" "$entry" &&
    grep -qx "Categories=AudioVideo;Video;AudioVideoEditing;" "$entry"
check "the entry starts morvane with one file, under its own icon" $?
mimetypes=$(sed -n 's/^MimeType=//p' "$entry" | tr ';' ' ')
if [ -f /usr/share/mime/globs2 ]; then
    unknown=""
    for type in $mimetypes; do
        grep -qx "$type" /usr/share/mime/types || unknown+=" $type"
    done
    [ -z "$unknown" ]; check "every MIME type of the entry is known to shared-mime-info${unknown:+ (not:$unknown)}" $?
    # Each extension that the program reads and that shared-mime-info knows is offered by one type.
    extensions=$(sed -n '/Supported_Extensions = QStringLiteral(/,/);/p' "$source_dir/filelist/Import_Files.h" |
        grep -o '"[^"]*"' | tr -d '"\n' | tr '|' ' ')
    missed=""
    for extension in $extensions; do
        types=$(grep -i ":\*\.$extension\$" /usr/share/mime/globs2 | cut -d: -f2)
        [ -z "$types" ] && continue
        hit=0
        for type in $types; do [[ " $mimetypes " == *" $type "* ]] && hit=1; done
        [ $hit -eq 1 ] || missed+=" .$extension"
    done
    [ -n "$extensions" ] && [ -z "$missed" ]
    check "the entry's MIME types cover the program's extensions${missed:+ (not:$missed)}" $?
else
    echo "package: shared-mime-info is not installed; the entry's MIME types are not checked"
fi

metainfo="$root/usr/share/metainfo/$id.metainfo.xml"
appstreamcli validate --no-net "$metainfo" >"$work/lint" 2>&1; rc=$?
[ $rc -eq 0 ] && ! grep -Eq '^[EW]:' "$work/lint"; check "appstreamcli validates the metainfo without errors or warnings" $?
[ $rc -eq 0 ] || cat "$work/lint"
grep -o '<release version="[^"]*"' "$metainfo" | head -1 | grep -qx "<release version=\"$version\""
check "the metainfo's newest release is the program's version" $?
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo"
check "the metainfo launches the desktop entry" $?
for shot in $(grep -o '<image>[^<]*</image>' "$metainfo" | sed 's|.*/docs/||; s|</image>||'); do
    [ -f "$source_dir/docs/$shot" ]; check "the screenshot docs/$shot exists" $?
done

for page in morvane morvane-cli morvane-encode morvane-table; do
    man1="$root/usr/share/man/man1/$page.1.gz"
    zcat "$man1" | groff -man -Tutf8 -ww -z >"$work/lint" 2>&1 && [ ! -s "$work/lint" ]
    check "$page(1) renders without warnings" $?
    cat "$work/lint"
    zcat "$man1" | grep -q "^\.TH .* \"Morvane $version\""; check "$page(1) names version $version" $?
done

if [ "$(id -u)" -ne 0 ]; then
    echo "package: not root, so the package is not installed and the installed programs are not run"
    finish
    exit
fi

installed_before=0
dpkg-query -W -f='${Status}' morvane 2>/dev/null | grep -q "install ok installed" && installed_before=1
DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$deb" >"$work/apt.log" 2>&1
rc=$?
check "apt installs the package" $rc
[ $rc -eq 0 ] || cat "$work/apt.log"

/usr/bin/morvane-cli --version >"$work/out" 2>&1 && [ "$(cat "$work/out")" = "Morvane $version" ]
check "the installed morvane-cli names version $version" $?
for program in morvane morvane-cli morvane-encode morvane-table; do
    ! ldd "/usr/bin/$program" | grep -q "not found"; check "every library of /usr/bin/$program is installed" $?
done
mkdir -p "$work/in"
ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=160x120:rate=25:duration=1 -c:v mpeg4 \
    "$work/in/clip.mp4"
/usr/bin/morvane-cli --preset "$preset" --output "$work/out1" "$work/in/clip.mp4" >"$work/cli.log" 2>&1
rc=$?
streams=$(ffprobe -v error -select_streams v:0 -show_entries stream=codec_name,width,height -of csv=p=0 \
    "$work/out1/clip.MP4" 2>/dev/null)
[ $rc -eq 0 ] && [ "$streams" = "mpeg4,320,240" ]
check "the installed morvane-cli converts a clip that ffprobe reads as the preset's ($streams)" $?
[ $rc -eq 0 ] || cat "$work/cli.log"

# The installed window program gets through its start, from its own program folder, to listening.
export XDG_RUNTIME_DIR="$work/run"
mkdir -m 700 -p "$XDG_RUNTIME_DIR"
# The window checks for updates as it starts: a closed local port, never the real endpoint.
MORVANE_UPDATE_URL="http://127.0.0.1:9/?p=PRODUCTNAME&v=VERSION" QT_QPA_PLATFORM=offscreen /usr/bin/morvane >"$work/gui.log" 2>&1 &
gui=$!
up=1
for ((i = 0; i < 300; i++)); do
    socket=$(find "$XDG_RUNTIME_DIR" -type s 2>/dev/null | head -1)
    if [ -n "$socket" ]; then
        up=0
        break
    fi
    kill -0 $gui 2>/dev/null || break
    sleep 0.1
done
check "the installed morvane starts and listens for a second start" $up
kill $gui 2>/dev/null
wait $gui 2>/dev/null

desktop-file-validate "/usr/share/applications/$id.desktop"; check "the installed entry validates" $?
appstreamcli validate --no-net "/usr/share/metainfo/$id.metainfo.xml" >/dev/null
check "the installed metainfo validates" $?
[ "$(man -w morvane-cli)" = /usr/share/man/man1/morvane-cli.1.gz ] && man -w morvane >/dev/null
check "man finds both installed pages" $?

if [ $installed_before -eq 0 ]; then
    DEBIAN_FRONTEND=noninteractive apt-get remove -y -qq morvane >/dev/null 2>&1 && [ ! -e /usr/bin/morvane ]
    check "apt removes the package again" $?
fi
finish
