# bash completion for tessellon: commands, their words and options, file names elsewhere.
_tessellon() {
    local cur prev words cword
    _init_completion || return
    local commands="discid cddb lookup tag musicbrainz show servers config about"
    local globals="--profile --component --version --help"
    local i command="" sub=""
    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
            --profile|--component) ((i++)) ;;
            -*) ;;
            *) if [[ -z $command ]]; then command=${words[i]}; elif [[ -z $sub ]]; then sub=${words[i]}; fi ;;
        esac
    done
    case $prev in
        --profile) _filedir -d; return ;;
        --component) _filedir so; return ;;
        --server|--port|--address|--description|--match|--artist|--album|--year|--genre|--title|--comment|--date|--disc|--track-title|--track-artist|--lengths) return ;;
    esac
    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "$commands $globals" -- "$cur"))
        return
    fi
    local options="--json --help"
    case $command in
        cddb)
            [[ -z $sub ]] && { COMPREPLY=($(compgen -W "query read sites" -- "$cur")); return; }
            options+=" --server --lengths" ;;
        servers)
            [[ -z $sub ]] && { COMPREPLY=($(compgen -W "list add edit remove reset retrieve --json" -- "$cur")); return; }
            options+=" --server --port --address --description" ;;
        config)
            [[ -z $sub ]] && { COMPREPLY=($(compgen -W "email id3" -- "$cur")); return; }
            [[ $sub == id3 ]] && { COMPREPLY=($(compgen -W "2.3 2.4 --json" -- "$cur")); return; } ;;
        discid|lookup) options+=" --lengths" ;;
        tag) options+=" --lengths --match --artist --album --year --genre --title --comment --various --not-various --wipe --keep --dry-run" ;;
        musicbrainz) options+=" --lengths --write --title --artist --date --disc --track-title --track-artist" ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        _filedir
    fi
} && complete -F _tessellon tessellon
