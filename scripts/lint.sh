#!/usr/bin/env bash
# Checks what the compiler does not: formatting, include cycles, the arrows between folders, umbrella headers, texts
# that cannot be shown. Needs git, awk, iconv and clang-format only.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

status=0

files=()
while IFS= read -r -d '' file; do
    # A file that is deleted but not committed yet is still listed.
    [[ -f $file ]] && files+=("$file")
done < <(git ls-files -z -- '*.h' '*.cpp')
if ((${#files[@]} == 0)); then
    echo "lint: no sources"
    exit 0
fi

formatter=$(command -v clang-format-14 || command -v clang-format || true)
if [[ -z $formatter ]]; then
    echo "lint: clang-format is not installed" >&2
    exit 1
fi
# Told once for each line; how it should read is what clang-format -i makes of it.
if ! told=$(printf '%s\0' "${files[@]}" |
    xargs -0 -n 40 -P 2 "$formatter" --dry-run -Werror --style=file 2>&1); then
    grep -E '^[^ ]+:[0-9]+:[0-9]+: (error|warning)' <<<"$told" | cut -d: -f1,2 | sort -u -t: -k1,1 -k2,2n |
        sed 's/$/: not as clang-format lays it out/' || printf '%s\n' "$told"
    status=1
fi

awk -f scripts/includes.awk "${files[@]}" || status=1

# The screens' font has the characters of code page 949; any other shows as an empty box.
for file in "${files[@]}"; do
    [[ $file == src/* ]] || continue
    if ! iconv -f UTF-8 -t CP949 "$file" >/dev/null 2>&1; then
        echo "$file: holds a character that is not of code page 949 and does not show"
        status=1
    fi
done

if ((status == 0)); then
    echo "lint: ${#files[@]} files, nothing to say"
fi
exit "$status"
