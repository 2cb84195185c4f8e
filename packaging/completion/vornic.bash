# Completion of vornic for bash.

_vornic_devices()
{
    local typed=$1 device
    [[ $typed == [\"\']* ]] && typed=${typed:1}
    while IFS= read -r device; do
        # Typed with or without a backslash before what the shell takes for its own.
        if [[ $device == "$typed"* || $(printf '%q' "$device") == "$typed"* ]]; then
            [[ $1 == [\"\']* ]] && COMPREPLY+=("$device") || COMPREPLY+=("$(printf '%q' "$device")")
        fi
    done < <(vornic devices 2>/dev/null)
}

_vornic_recordings()
{
    mapfile -t COMPREPLY < <(compgen -W "$(vornic recover 2>/dev/null | cut -d ' ' -f 1)" -- "$1")
}

_vornic()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} i command= ids=0
    COMPREPLY=()
    for (( i = 1; i < COMP_CWORD; ++i )); do
        [[ ${COMP_WORDS[i]} == record && ${COMP_WORDS[i - 1]} != --record && ${COMP_WORDS[i - 1]} != = ]] \
            && command=record
        [[ ${COMP_WORDS[i]} == devices ]] && command=devices
        [[ $command == recover && ${COMP_WORDS[i]} == [0-9]* ]] && (( ++ids ))
        [[ ${COMP_WORDS[i]} == recover && -z $command ]] && command=recover
        [[ ${COMP_WORDS[i]} == --record || ${COMP_WORDS[i]} == --record=* ]] && command=--record
    done
    # The shell may take "=" for a word of its own.
    [[ $word == = ]] && before="$before=" && word=
    [[ $before == = ]] && before="${COMP_WORDS[COMP_CWORD - 2]}="

    case $before in
    --record | --record=)
        mapfile -t COMPREPLY < <(compgen -W 'full rectangle' -- "$word")
        return ;;
    --quality | --quality=)
        mapfile -t COMPREPLY < <(compgen -W 'high medium' -- "$word")
        return ;;
    --audio=)
        _vornic_devices "$word"
        return ;;
    --delete | --delete=)
        _vornic_recordings "$word"
        return ;;
    --region | --region= | --duration | --duration= | --max-size | --max-size=)
        return ;;
    esac

    if [[ $command == recover && $ids -eq 0 && $word != -* ]]; then
        _vornic_recordings "$word"
        return
    fi
    if [[ $command == *record || $command == recover ]] && [[ $word != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -X '!*.[mM][pP]4' -- "$word"; compgen -d -- "$word")
        compopt -o filenames 2>/dev/null
        return
    fi
    local words=
    case $command in
    '') words='record recover devices --record= --stop --toggle --pause --help --version' ;;
    record) words='--region --quality --audio --audio= --system-audio --separate-tracks --duration --max-size --overwrite --ignore-low-space --help' ;;
    recover) words='--quality --overwrite --delete --help' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    return 0
}

complete -F _vornic vornic
