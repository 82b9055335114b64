# bash completion for kel, the command-line tool of KEL Viewer. The options
# of each command come from kel itself (`kel --options PART`), so that they
# are always the ones the installed kel takes.

_kel()
{
    local cur prev words cword
    _init_completion || return

    local kel=${words[0]}
    if [[ $cword -eq 1 ]]; then
        local commands
        commands=$("$kel" --options 2>/dev/null | cut -d' ' -f1 | sort -u)
        COMPREPLY=($(compgen -W "$commands --help --version --options" -- "$cur"))
        return
    fi

    local command=${words[1]}
    # The document comes right after the command.
    if [[ $cword -eq 2 ]]; then
        _filedir kel
        return
    fi

    case $prev in
        --lang)
            COMPREPLY=($(compgen -W "en sv" -- "$cur"))
            return
            ;;
        --order)
            COMPREPLY=($(compgen -W "0 1 2" -- "$cur"))
            return
            ;;
        --mode)
            COMPREPLY=($(compgen -W "1 2 3" -- "$cur"))
            return
            ;;
        --settings)
            _filedir ini
            return
            ;;
        --items)
            local items="total blocks subblocks questions userblocks"
            local done_part=${cur%,*}
            if [[ $done_part == "$cur" ]]; then
                COMPREPLY=($(compgen -W "$items" -- "$cur"))
            else
                COMPREPLY=($(compgen -P "$done_part," -W "$items" -- "${cur##*,}"))
                compopt -o nospace
            fi
            return
            ;;
        -o)
            if [[ $command == report ]]; then
                _filedir '@(pdf|html|htm)'
            else
                _filedir '@(emf|wmf|png|bmp|jpg|gif|svg|pdf)'
            fi
            return
            ;;
        --recipe)
            _filedir kelreport
            return
            ;;
        --sections)
            local sections="title indexes overview histograms fractions total-index block-indexes distributions rankings comments"
            local done_sections=${cur%,*}
            if [[ $done_sections == "$cur" ]]; then
                COMPREPLY=($(compgen -W "$sections" -- "$cur"))
            else
                COMPREPLY=($(compgen -P "$done_sections," -W "$sections" -- "${cur##*,}"))
                compopt -o nospace
            fi
            return
            ;;
        --by | --date)
            return
            ;;
        --blocks) # a list in report, a switch in graph total-index
            [[ $command == report ]] && return
            ;;
        --select | --flex | --seed | --max-rows | --category | --locale | --block | --question | --split | --group | --lines)
            return
            ;;
    esac

    # Which part of the command line the cursor is in: graph KIND, render
    # overview, render graph (KIND), or the command itself.
    local parts part=$command keywords="" word kind=""
    parts=$("$kel" --options 2>/dev/null)
    local kinds
    kinds=$(sed -n 's/^graph //p' <<<"$parts")
    if [[ $command == render ]]; then
        part=""
        keywords="overview graph"
    elif [[ $command == graph ]]; then
        keywords=$kinds
    fi
    for word in "${words[@]:3:cword-3}"; do
        if [[ $command == render && -z $part && ($word == overview || $word == graph) ]]; then
            part="render $word"
            [[ $word == graph ]] && keywords=$kinds || keywords=""
        elif [[ $part == "render graph" || $command == graph ]] && [[ -z $kind ]] && grep -qx "graph $word" <<<"$parts"; then
            kind=$word
            part="graph $word"
            keywords=""
        fi
    done
    local options
    if [[ -n $part ]]; then
        options=$("$kel" --options $part 2>/dev/null)
    else # render before its keyword takes the options of both forms
        options=$({ "$kel" --options render overview; "$kel" --options render graph; } 2>/dev/null | sort -u)
    fi
    [[ $command == render || $command == report ]] && options+=" -o"
    COMPREPLY=($(compgen -W "$options $keywords" -- "$cur"))
} &&
    complete -F _kel kel
