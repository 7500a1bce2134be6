# SPDX-License-Identifier: GPL-3.0-or-later
# What fish completes of vantoro's command line.

function __vantoro_microphones
    timeout 3 vantoro devices 2>/dev/null | string replace --filter --regex '^[* ] ' ''
end

set -l commands record devices recover doctor
set -l alone "not __fish_seen_subcommand_from $commands"
set -l record '__fish_seen_subcommand_from record'
complete -c vantoro -f

complete -c vantoro -n $alone -a record -d 'Record until Ctrl+C'
complete -c vantoro -n $alone -a devices -d 'List the microphones'
complete -c vantoro -n $alone -a recover -d 'Finish interrupted recordings'
complete -c vantoro -n $alone -a doctor -d 'Tell what the recorder finds on this machine'
complete -c vantoro -n $alone -s h -l help -d 'Print help'
complete -c vantoro -n $alone -s v -l version -d 'Print the version'

complete -c vantoro -n $record -l seconds -x -d 'Stop after so many seconds'
complete -c vantoro -n $record -l no-system-audio -d 'Leave out what the computer plays'
complete -c vantoro -n $record -l no-microphone -d 'Leave out the microphone'
complete -c vantoro -n $record -l microphone -x -a '(__vantoro_microphones)' -d 'Record this microphone'
complete -c vantoro -n $record -l system-volume -x -d 'Gain of the computer\'s sound'
complete -c vantoro -n $record -l microphone-volume -x -d 'Gain of the microphone'
complete -c vantoro -n '__fish_seen_subcommand_from record recover' -l folder -x \
    -a '(__fish_complete_directories)' -d 'Folder of the recordings'
complete -c vantoro -n '__fish_seen_subcommand_from record doctor' -l language -x -a 'zh-Hans en' \
    -d 'Language of the messages'
