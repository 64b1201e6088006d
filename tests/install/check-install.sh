#!/usr/bin/env bash
# check-install.sh BUILD: installs a build below a temporary folder and looks at what came there.
set -euo pipefail
build=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
status=0
wrong() {
    printf 'install: %s\n' "$*"
    status=1
}

DESTDIR=$root cmake --install "$build" --prefix /usr >"$root/log" || { cat "$root/log"; exit 1; }
rm "$root/log"
usr=$root/usr

# The documents are found by their links below.
expected='bin/rovana
bin/rovana-cardhost
bin/rovana-play
bin/rovanactl
lib/rovana/lines.so
share/applications/rovana.desktop
share/doc/rovana/README.ko.md
share/doc/rovana/README.md
share/doc/rovana/changelog.gz
share/doc/rovana/copyright
share/icons/hicolor/scalable/apps/rovana.svg
share/man/ko/man1/rovana.1.gz
share/man/man1/rovana-cardhost.1.gz
share/man/man1/rovana-play.1.gz
share/man/man1/rovana.1.gz
share/man/man1/rovanactl.1.gz
share/metainfo/org.rovana.rovana.metainfo.xml
share/rovana/visits/approved/demo.txt
share/rovana/visits/demo.visit'
# The office is built where libpqxx is.
if [[ -e $build/bin/rovana-office ]]; then
    expected=$(LC_ALL=C sort <<<"$expected
bin/rovana-office
bin/rovana-sync
lib/systemd/user/rovana-sync.service
share/doc/rovana-office/changelog.gz
share/doc/rovana-office/copyright
share/doc/rovana-office/office.md
share/man/man1/rovana-office.1.gz
share/man/man1/rovana-sync.1.gz")
fi
found=$(cd "$usr" && find . -type f -printf '%P\n' | grep -v '^share/doc/rovana/docs/' | LC_ALL=C sort)
[[ $found == "$expected" ]] || wrong "other files than expected: $(diff <(echo "$expected") <(echo "$found") || true)"

documents=$usr/share/doc/rovana
for document in "$documents"/*.md "$documents"/docs/*.md; do
    while read -r link; do
        [[ $link == *:* || $link == '#'* || -e ${document%/*}/${link%%#*} ]] ||
            wrong "${document#"$usr/"} points to $link, which is not there"
    done < <(grep -oP '(\]\(|src=")\K[^)" ]+' "$document")
done

guide=$(cat "$documents/docs/admin.md")
page=$(zcat "$usr/share/man/man1/rovanactl.1.gz" | tr -d '\\')
while read -r command _; do
    grep -q "\`rovanactl $command\b" <<<"$guide" || wrong "docs/admin.md does not tell of the command $command"
    grep -qE "^\.(B|BR|BI) $command\b" <<<"$page" || wrong "rovanactl.1 does not tell of the command $command"
done < <("$usr/bin/rovanactl" --help | sed -n '/^Commands:/,/^$/s/^  //p')
if [[ -e $usr/bin/rovana-office ]]; then
    page=$(zcat "$usr/share/man/man1/rovana-office.1.gz" | tr -d '\\')
    while read -r command _; do
        grep -qE "^\.B $command\b" <<<"$page" || wrong "rovana-office.1 does not tell of the command $command"
    done < <("$usr/bin/rovana-office" --help | sed -n '/^Commands:/,/^$/s/^  //p')
fi

validate() {
    if ! command -v "$1" >/dev/null; then
        echo "install: $1 is not installed, so ${*: -1} is not validated"
    else
        "$@" >"$root/told" 2>&1 || wrong "$(cat "$root/told")"
    fi
}
validate appstreamcli validate --no-net "$usr/share/metainfo/org.rovana.rovana.metainfo.xml"
validate desktop-file-validate "$usr/share/applications/rovana.desktop"
if command -v groff >/dev/null; then
    for page in "$usr"/share/man/man1/*.gz "$usr"/share/man/ko/man1/*.gz; do
        told=$(zcat "$page" | groff -K utf8 -T utf8 -man -ww 2>&1 >/dev/null)
        [[ -z $told ]] || wrong "${page#"$usr/"}: $told"
    done
fi

export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen
"$usr/bin/rovanactl" init "$root/device" --demo --date 2026-11-21 >/dev/null &&
    "$usr/bin/rovana-play" "$usr/share/rovana/visits/demo.visit" --device "$root/device" ||
    wrong "the demonstration visit does not play from where it is installed"
exit "$status"
