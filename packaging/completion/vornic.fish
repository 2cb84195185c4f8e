# Completion of vornic for fish.

set -l window 'not __fish_seen_subcommand_from record recover devices'
set -l first "$window; and not string match -q -- '--record*' (commandline -opc)"
set -l recordinto "$window; and string match -q -- '--record*' (commandline -opc)"
set -l record '__fish_seen_subcommand_from record'
set -l recover '__fish_seen_subcommand_from recover'
set -l recordings '(vornic recover 2>/dev/null | string replace -r " .*" "")'
set -l recoverfirst "$recover; and not string match -qr -- '^\d' (commandline -opc)"
set -l recoverinto "$recover; and string match -qr -- '^\d' (commandline -opc)"

complete -c vornic -f
complete -c vornic -n $first -a record -d 'Record without the window'
complete -c vornic -n $first -a recover -d 'List unfinished recordings, or make the movie of one'
complete -c vornic -n $first -a devices -d 'List the audio input devices'
complete -c vornic -n $window -l record -x -a 'full\t"The full display" rectangle\t"The selected rectangle"' \
    -d 'Record; at once into a file that is named'
complete -c vornic -n $recordinto -a '(__fish_complete_suffix .mp4)'
complete -c vornic -n $window -l stop -d 'End the recording of the window that runs'
complete -c vornic -n $window -l toggle -d 'Begin a recording, or end the one that runs'
complete -c vornic -n $window -l pause -d 'Pause it, or go on with it'
complete -c vornic -n $window -s v -l version -d 'Print the version'
complete -c vornic -n 'not __fish_seen_subcommand_from devices' -s h -l help -d 'List the commands and options'

complete -c vornic -n $record -l region -x -d 'Record this rectangle: X,Y,W,H in pixels'
complete -c vornic -n $record -l quality -x -a 'high medium' -d '30 or 20 pictures a second'
complete -c vornic -n $record -l audio -d 'Sound too, of the first audio input device'
complete -c vornic -n $record -a '(string match -q -- "--audio=*" (commandline -ct); and vornic devices 2>/dev/null | string replace -r "^" -- --audio=)' \
    -d 'Audio input device'
complete -c vornic -n $record -l system-audio -d 'What the system plays, too'
complete -c vornic -n $record -l separate-tracks -d 'A track for each of the two sounds'
complete -c vornic -n $record -l duration -x -d 'End the recording by itself: seconds'
complete -c vornic -n $record -l max-size -x -d 'End it before the movie is larger: 700M, 1.5G'
complete -c vornic -n $record -l overwrite -d 'Replace the file'
complete -c vornic -n $record -l ignore-low-space -d 'Go on below the free-space limit'
complete -c vornic -n $record -a '(string match -q -- "-*" (commandline -ct); or __fish_complete_suffix .mp4)'

complete -c vornic -n $recover -l quality -x -a 'high medium' -d 'Another quality than it was recorded with'
complete -c vornic -n $recover -l overwrite -d 'Replace the file'
complete -c vornic -n $recover -l delete -x -a $recordings -d 'Delete the recording'
complete -c vornic -n $recoverfirst -a $recordings -d 'Unfinished recording'
complete -c vornic -n $recoverinto -a '(__fish_complete_suffix .mp4)'
