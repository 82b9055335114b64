#!/usr/bin/env bash
# The bash completion against kel's own table of options: for every part of
# a command line that `kel --options` lists, completing after it offers
# exactly that part's options (and the keywords that may follow).
# The manual page and the README describe every option of the table too.
# usage: check_completion.sh KEL COMPLETION_FILE MAN_PAGE README
set -uo pipefail
kel=$1
completion=$2
man_page=$3
readme=$4
[ -f /usr/share/bash-completion/bash_completion ] || { echo "bash-completion is not installed"; exit 77; }
# shellcheck disable=SC1091
source /usr/share/bash-completion/bash_completion
# shellcheck disable=SC1090
source "$completion"
failures=0

# Completes the words given (the last one being the empty word at the cursor).
complete_line() {
    COMP_WORDS=("$kel" "$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMP_LINE="${COMP_WORDS[*]}"
    COMP_POINT=${#COMP_LINE}
    COMPREPLY=()
    _kel
    printf '%s\n' "${COMPREPLY[@]}" | sort -u | grep -v '^$'
}

expect() { # DESCRIPTION EXPECTED_WORDS -- WORDS...
    local what=$1 want=$2
    shift 3
    local got
    got=$(complete_line "$@")
    want=$(tr ' ' '\n' <<<"$want" | sort -u | grep -v '^$')
    if [ "$got" != "$want" ]; then
        echo "FAIL: $what: offered"$'\n'"$got"$'\n'"expected"$'\n'"$want"
        failures=$((failures + 1))
    fi
}

parts=$("$kel" --options) || { echo "kel --options failed"; exit 1; }
[ "$(wc -l <<<"$parts")" -ge 10 ] || { echo "kel --options lists too few parts: $parts"; exit 1; }
kinds=$(sed -n 's/^graph //p' <<<"$parts" | tr '\n' ' ')
commands=$(cut -d' ' -f1 <<<"$parts" | sort -u | tr '\n' ' ')
expect "the commands" "$commands --help --version --options" -- ""
while read -r part; do
    options=$("$kel" --options $part | tr '\n' ' ')
    set -- $part
    case $part in
        graph) expect "$part" "$options $kinds" -- graph s.kel "" ;;
        "graph "*)
            expect "$part" "$options" -- graph s.kel --reversed "$2" ""
            expect "render graph $2" "$options -o" -- render s.kel graph "$2" "" ;;
        "render overview") expect "$part" "$options -o" -- render s.kel overview "" ;;
        "render graph") expect "$part" "$options -o $kinds" -- render s.kel --select 0:1 graph "" ;;
        report)
            expect "$part" "$options -o" -- report s.kel ""
            expect "$part after --blocks" "$options -o" -- report s.kel --blocks 1,2 "" ;;
        *) expect "$part" "$options" -- "$part" s.kel "" ;;
    esac
done <<<"$parts"
# --blocks is a switch in graph total-index: what follows it is completed.
expect "graph total-index after --blocks" "$("$kel" --options graph total-index | tr '\n' ' ')" -- graph s.kel total-index --blocks ""
# Render before its keyword: both forms' options.
both=$({ "$kel" --options render overview; "$kel" --options render graph; } | sort -u | tr '\n' ' ')
expect "render" "$both -o overview graph" -- render s.kel ""

for option in $(while read -r part; do "$kel" --options $part; done <<<"$parts" | sort -u) --options; do
    grep -qF -- "${option//-/\\-}" "$man_page" || { echo "FAIL: $man_page does not describe $option"; failures=$((failures + 1)); }
    grep -qF -- "$option" "$readme" || { echo "FAIL: $readme does not mention $option"; failures=$((failures + 1)); }
done

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed"; exit 1; }
echo "completion agrees with kel --options for: $(tr '\n' ',' <<<"$parts")"
