# bash completion for plakard                              -*- shell-script -*-

_plakard() {
    local cur prev words cword
    _init_completion || return

    if ((cword == 1)); then
        COMPREPLY=($(compgen -W 'compose resize probe check help --help' -- "$cur"))
        return
    fi

    case $prev in
        --layout) COMPREPLY=($(compgen -W 'hero device-top' -- "$cur")); return ;;
        --fit) COMPREPLY=($(compgen -W 'cover stretch' -- "$cur")); return ;;
        --device) COMPREPLY=($(compgen -W 'phone home-button tablet none' -- "$cur")); return ;;
        --store) COMPREPLY=($(compgen -W 'app-store play' -- "$cur")); return ;;
        --screenshot | --in) _filedir '@(png|PNG|jpg|JPG|jpeg|JPEG)'; return ;;
        --out) _filedir png; return ;;
        --font) _filedir '@(ttf|TTF|otf|OTF|ttc|TTC|otc|OTC)'; return ;;
        --match) _filedir; return ;;
        --lang) COMPREPLY=($(compgen -W 'en de fr es it pt nl sv tr az el ru uk lt ar he fa ur hi ja ko zh' -- "$cur")); return ;;
        --bg | --fg | --headline | --size) return ;;
    esac

    case ${words[1]} in
        compose)
            [[ $cur == -* ]] && COMPREPLY=($(compgen -W '--bg --fg --headline --screenshot --out --size --layout --font --lang --match --device --help' -- "$cur"))
            ;;
        resize)
            [[ $cur == -* ]] && COMPREPLY=($(compgen -W '--in --out --size --fit --help' -- "$cur"))
            ;;
        probe)
            if [[ $cur == -* ]]; then
                COMPREPLY=($(compgen -W '--help' -- "$cur"))
            else
                _filedir '@(png|PNG|jpg|JPG|jpeg|JPEG)'
            fi
            ;;
        check)
            # Folders and files: pages are told by content, so any name goes.
            if [[ $cur == -* ]]; then
                COMPREPLY=($(compgen -W '--store --help' -- "$cur"))
            else
                _filedir
            fi
            ;;
    esac
} &&
    complete -F _plakard plakard

# ex: filetype=sh
