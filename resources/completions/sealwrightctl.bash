# bash completion for sealwrightctl

_sealwrightctl()
{
    local cur prev words cword
    if declare -F _get_comp_words_by_ref > /dev/null; then
        _get_comp_words_by_ref -n := cur prev words cword
    else
        words=("${COMP_WORDS[@]}")
        cword=$COMP_CWORD
        cur=${words[cword]}
        prev=${words[cword - 1]}
    fi
    local work="--document --show-dialogs --follow --timeout --tool-pause --json --close"
    local candidates=

    case $prev in
        --document)
            candidates=$(sealwrightctl documents 2> /dev/null | cut -f 1)
            mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
            return
            ;;
        --window)
            candidates=$(sealwrightctl windows 2> /dev/null | cut -f 1)
            mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
            return
            ;;
        --timeout | --page | --identity | --tool-pause) return ;;
    esac

    if ((cword == 1)); then
        candidates="submit staple sign resume waiting prepare history examine issues compare log clear-log documents windows
            new get set cancel close open quit --help --version"
        mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
        return
    fi

    case ${words[1]} in
        submit) candidates="$work --skip-stapling" ;;
        staple | sign) candidates=$work ;;
        prepare) candidates="--document --identity" ;;
        history) candidates="--document --page --xml --timeout --tool-pause --json --close" ;;
        resume) candidates="--all --show-dialogs --follow --timeout --json --close" ;;
        documents | windows | waiting) candidates=--json ;;
        examine) candidates="--document --json --junit --sarif" ;;
        compare) candidates="--json" ;;
        get) candidates="--document --window" ;;
        set) candidates="--document --window --unset" ;;
        issues)
            candidates="--json --junit --sarif"
            [[ $cur != -* ]] && candidates=$(sealwrightctl documents 2> /dev/null | cut -f 1)
            ;;
        log | clear-log | cancel | close)
            ((cword == 2)) && candidates=$(sealwrightctl documents 2> /dev/null | cut -f 1)
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
    case ${words[1]} in
        submit | staple | sign | resume | prepare | examine | compare | open)
            [[ $cur == -* ]] || mapfile -t COMPREPLY < <(compgen -f -- "$cur")
            compopt -o filenames 2> /dev/null
            ;;
    esac
}
complete -F _sealwrightctl sealwrightctl
