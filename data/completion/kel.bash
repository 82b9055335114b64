# bash completion for kel, the command-line tool of KEL Viewer.

_kel()
{
    local cur prev words cword
    _init_completion || return

    local commands="check dump select indexes graph render report batch"
    if [[ $cword -eq 1 ]]; then
        COMPREPLY=($(compgen -W "$commands --help --version" -- "$cur"))
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
        --by | --blocks | --date)
            return
            ;;
        --select | --flex | --seed | --max-rows | --category | --locale | --block | --question | --split | --group | --lines)
            return
            ;;
    esac

    local selection="--select --flex --flex-current --order --seed --locale --lang"
    local graph_kinds="histogram fraction ranking distribution total-index block-index"
    local options
    case $command in
        check) options="--lang" ;;
        dump) options="" ;;
        select) options="$selection --max-rows" ;;
        indexes) options="$selection --total --category --counts --items --full-text --columns" ;;
        graph) options="$selection --reversed --short-names $graph_kinds --block --question --split --unsorted
                        --category --pie --group --percent --3d --horizontal --vertical-labels --main --blocks
                        --questions --empty-splits --lines --explain --no-vertical-labels --no-data-labels" ;;
        render) options="$selection overview graph --mode --headers-only -o $graph_kinds --block --question --split" ;;
        report) options="$selection --settings --recipe --by --within --sections --blocks --split --date -o" ;;
        batch) options="" ;;
        *) return ;;
    esac
    COMPREPLY=($(compgen -W "$options" -- "$cur"))
} &&
    complete -F _kel kel
