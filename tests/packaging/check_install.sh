#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks what a desktop and a
# shell will see there: the files, the freedesktop validators, the MIME type
# (by name and by content), the desktop entry's association, the manual pages
# against the tools' own usage, and the installed programs themselves.
# usage: check_install.sh BUILD_DIR VERSION
set -uo pipefail
build=$1
version=$2

for tool in desktop-file-validate update-desktop-database appstreamcli update-mime-database xdg-mime mimetype man; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool not installed (scripts/install-deps.sh installs it)"; exit 77; }
done

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/usr
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

cmake --install "$build" --prefix "$prefix" >"$tmp/install.log" 2>&1 || { cat "$tmp/install.log"; exit 1; }
share=$prefix/share
app_id=se.brennvik.kelviewer

# --- the files, in the places the desktop looks for them
expected=(
    bin/kelviewer bin/kel libexec/kelviewer/kel-render
    share/applications/$app_id.desktop
    share/metainfo/$app_id.metainfo.xml
    share/mime/packages/kelviewer.xml
    share/icons/hicolor/scalable/apps/kelviewer.svg
    share/icons/hicolor/scalable/mimetypes/application-x-kel.svg
    share/man/man1/kelviewer.1.gz share/man/man1/kel.1.gz
    share/bash-completion/completions/kel
    share/kelviewer/samples/employee-survey-en.kel share/kelviewer/samples/employee-survey-sv.kel
    share/doc/kelviewer/help/en/index.html share/doc/kelviewer/help/sv/index.html
    share/doc/kelviewer/copyright
)
for f in "${expected[@]}"; do
    [ -f "$prefix/$f" ] || fail "not installed: $f"
done
[ -x "$prefix/bin/kelviewer" ] && [ -x "$prefix/bin/kel" ] || fail "the programs are not executable"
extra=$(ls "$prefix/bin" | grep -vx -e kel -e kelviewer)
[ -z "$extra" ] || fail "programs that do not belong in an installation: $extra"
[ -z "$(find "$prefix" -name '*.a' -o -name '*.h' -o -name 'test_*')" ] || fail "libraries, headers or tests installed"

# Every PNG size exists and really has that size (IHDR width and height).
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{ printf "%dx%d", $3 * 256 + $4, $7 * 256 + $8 }'; }
for size in 16 22 24 32 48 64 128 256; do
    for icon in apps/kelviewer mimetypes/application-x-kel; do
        png=$share/icons/hicolor/${size}x${size}/$icon.png
        if [ ! -f "$png" ]; then
            fail "icon missing: $png"
        elif [ "$(png_size "$png")" != "${size}x${size}" ]; then
            fail "$png is $(png_size "$png"), not ${size}x${size}"
        fi
    done
done

# --- validators
desktop=$share/applications/$app_id.desktop
# Hints count too (two main categories would list the program twice).
notes=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate rejects the desktop entry"
[ -z "$notes" ] || fail "desktop-file-validate has notes: $notes"
appstreamcli validate --no-net "$share/metainfo/$app_id.metainfo.xml" || fail "appstreamcli rejects the metainfo"
grep -q "@[A-Z_]*@" "$share/metainfo/$app_id.metainfo.xml" && fail "metainfo has unfilled placeholders"
grep -q "\.example[/<\"]" "$share/metainfo/$app_id.metainfo.xml" && fail "metainfo names a placeholder address"

# The three files name the same program, icon and type.
grep -qx "Exec=kelviewer %F" "$desktop" || fail "desktop entry does not run 'kelviewer %F'"
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "desktop entry's icon '$icon' is not installed"
grep -q "<launchable type=\"desktop-id\">$app_id.desktop</launchable>" "$share/metainfo/$app_id.metainfo.xml" \
    || fail "metainfo does not launch the installed desktop entry"
grep -q "<release version=\"$version\"" "$share/metainfo/$app_id.metainfo.xml" \
    || fail "metainfo has no release $version"

# --- the MIME type, as a file manager sees it
update-mime-database "$share/mime" || fail "update-mime-database failed"
update-desktop-database "$share/applications" || fail "update-desktop-database failed"
export XDG_DATA_HOME=$tmp/home-data XDG_DATA_DIRS=$share
# xdg-mime first guesses the desktop it runs on, from the environment and,
# failing that, by asking the X server with xprop or the session bus. A
# generic desktop skips the guessing, so the answers are the same on every
# machine and no program outside the install list is started.
export XDG_CURRENT_DESKTOP=X-Generic
unset KDE_FULL_SESSION GNOME_DESKTOP_SESSION_ID MATE_DESKTOP_SESSION_ID DESKTOP_SESSION
mkdir -p "$XDG_DATA_HOME" "$tmp/files"
sample=$share/kelviewer/samples/employee-survey-en.kel
cp "$sample" "$tmp/files/survey.kel"
cp "$sample" "$tmp/files/renamed-survey.dat"
printf 'plain text, not a survey\n' >"$tmp/files/notes.dat"
head -c 8 "$sample" >"$tmp/files/magic-only.bin"
printf 'x%.0s' $(seq 1 64) >>"$tmp/files/magic-only.bin"
query() { xdg-mime query filetype "$1" 2>/dev/null; }
[ "$(query "$tmp/files/survey.kel")" = application/x-kel ] || fail "survey.kel is '$(query "$tmp/files/survey.kel")'"
[ "$(query "$tmp/files/renamed-survey.dat")" = application/x-kel ] \
    || fail "a renamed survey is '$(query "$tmp/files/renamed-survey.dat")' (magic bytes not matched)"
[ "$(query "$tmp/files/magic-only.bin")" = application/x-kel ] || fail "the two magic words alone are not recognised"
[ "$(query "$tmp/files/notes.dat")" != application/x-kel ] || fail "a text file is taken for a KEL document"
export XDG_CONFIG_HOME=$tmp/config
default=$(xdg-mime query default application/x-kel 2>/dev/null)
[ "$default" = "$app_id.desktop" ] || fail "a .kel file would open with '$default', not $app_id.desktop"
grep -q 'xml:lang="sv"' "$share/mime/packages/kelviewer.xml" || fail "MIME type has no Swedish description"

# --- the installed programs, with no display at all
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
out=$("$prefix/bin/kelviewer" --version 2>&1) || fail "kelviewer --version failed: $out"
[ "$out" = "KEL Viewer $version" ] || fail "kelviewer --version printed '$out'"
out=$("$prefix/bin/kelviewer" --lang sv --help 2>&1) || fail "kelviewer --help failed: $out"
grep -q "^Användning: kelviewer" <<<"$out" || fail "kelviewer --lang sv --help is not Swedish: $out"
out=$("$prefix/bin/kel" --version 2>&1) || fail "kel --version failed"
grep -q " $version\$" <<<"$out" || fail "kel --version printed '$out'"
out=$("$prefix/bin/kel" check "$sample" 2>&1) || fail "kel check on the installed sample failed: $out"
[ "$out" = OK ] || fail "kel check printed '$out'"
# The installed kel finds its drawing helper in libexec, from any prefix.
"$prefix/bin/kel" render "$sample" overview -o "$tmp/overview.png" >"$tmp/render.log" 2>&1 \
    || fail "kel render with the installed helper failed: $(cat "$tmp/render.log")"
[ -s "$tmp/overview.png" ] || fail "kel render wrote no picture"
"$prefix/bin/kel" report "$sample" --sections title,indexes -o "$tmp/report.html" >"$tmp/report.log" 2>&1 \
    || fail "kel report with the installed helper failed: $(cat "$tmp/report.log")"
grep -q "<html" "$tmp/report.html" || fail "kel report wrote no HTML report"

# --- the manual pages against the tools' own usage, so they cannot drift
kel_page=$tmp/kel.1
zcat "$share/man/man1/kel.1.gz" >"$kel_page"
usage=$("$prefix/bin/kel" --help) || fail "kel --help failed"
commands=$(sed -n 's/^  kel \([a-z][a-z-]*\).*/\1/p' <<<"$usage")
[ -n "$commands" ] || fail "kel --help lists no commands"
for c in $commands; do
    grep -q "^\.B kel $c\b" "$kel_page" || fail "kel.1 SYNOPSIS lacks 'kel $c'"
    grep -q "^\.B $c\b" "$kel_page" || fail "kel.1 COMMANDS lacks '$c'"
done
for option in $(grep -o -- '--[a-z][a-z0-9-]*' <<<"$usage" | sort -u); do
    grep -qF -- "${option//-/\\-}" "$kel_page" || fail "kel.1 does not describe $option"
done
viewer_page=$tmp/kelviewer.1
zcat "$share/man/man1/kelviewer.1.gz" >"$viewer_page"
for option in $("$prefix/bin/kelviewer" --help | grep -o -e '--[a-z][a-z0-9-]*' -e '/AutoStart' | sort -u); do
    grep -qF -- "${option//-/\\-}" "$viewer_page" || fail "kelviewer.1 does not describe $option"
done
for status in 0 1 2 3 4 5 6 7 64; do
    sed -n '/^\.SH EXIT STATUS/,/^\.SH /p' "$kel_page" | grep -qx "\.B $status" || fail "kel.1 lacks exit status $status"
done
for page in "$kel_page" "$viewer_page"; do
    warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "$(basename "$page") has troff warnings: $warnings"
done

# --- bash completion offers every command the tool accepts (it asks the
# installed kel, as it is the one on the command line)
completion=$share/bash-completion/completions/kel
bash -n "$completion" || fail "the bash completion does not parse"
if [ -f /usr/share/bash-completion/bash_completion ]; then
    offered=$(bash -c '
        source /usr/share/bash-completion/bash_completion
        source "$1"
        COMP_WORDS=("$2" ""); COMP_CWORD=1; COMP_LINE="$2 "; COMP_POINT=${#COMP_LINE}
        _kel kel "" kel
        printf "%s\n" "${COMPREPLY[@]}"' _ "$completion" "$prefix/bin/kel")
    for c in $commands; do
        grep -qx "$c" <<<"$offered" || fail "bash completion does not offer '$c'"
    done
fi

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed" >&2; exit 1; }
echo "install into a prefix: all checks passed"
