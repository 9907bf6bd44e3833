# Completion of orv-h264 for fish.

set -l subcommands info inspect explain frames report convert edit avcc help
set -l none "not __fish_seen_subcommand_from $subcommands"
set -l framings "annexb length1 length2 length3 length4"

complete -c orv-h264 -n $none -f
complete -c orv-h264 -n $none -a info -d "Tell what a stream is"
complete -c orv-h264 -n $none -a inspect -d "Show what a stream holds, unit by unit"
complete -c orv-h264 -n $none -a explain -d "Tell what a byte or bit of a stream belongs to"
complete -c orv-h264 -n $none -a frames -d "List the frames of a stream"
complete -c orv-h264 -n $none -a report -d "Write a page about a stream, for a browser"
complete -c orv-h264 -n $none -a convert -d "Write a stream in another framing"
complete -c orv-h264 -n $none -a edit -d "Change header fields, and prove that nothing else has changed"
complete -c orv-h264 -n $none -a avcc -d "Show an AVC decoder configuration record"
complete -c orv-h264 -n $none -a help -d "Print the help of the tool, or of a subcommand"
complete -c orv-h264 -n "__fish_seen_subcommand_from help" -f -a "$subcommands"
complete -c orv-h264 -s h -l help -d "Print help and exit"
complete -c orv-h264 -n $none -s V -l version -d "Print the version and exit"

set -l of_info "__fish_seen_subcommand_from info"
set -l of_inspect "__fish_seen_subcommand_from inspect"
set -l of_explain "__fish_seen_subcommand_from explain"
set -l of_frames "__fish_seen_subcommand_from frames"
set -l of_report "__fish_seen_subcommand_from report"
set -l of_convert "__fish_seen_subcommand_from convert"
set -l of_edit "__fish_seen_subcommand_from edit"
set -l of_avcc "__fish_seen_subcommand_from avcc"

for subcommand in $of_info $of_inspect $of_explain $of_frames $of_report $of_convert $of_edit
    complete -c orv-h264 -n $subcommand -l format -x -a $framings -d "The framing"
    complete -c orv-h264 -n $subcommand -l track -x -d "The track of a container"
    complete -c orv-h264 -n $subcommand -l max-unit -x -d "Report a longer unit instead of reading it"
end
for subcommand in $of_info $of_inspect $of_explain $of_frames $of_avcc
    complete -c orv-h264 -n $subcommand -l json -d "Print JSON instead"
    complete -c orv-h264 -n $subcommand -l csv -d "Print comma-separated columns instead"
    complete -c orv-h264 -n $subcommand -l tsv -d "Print tab-separated columns instead"
end
for subcommand in $of_info $of_frames
    complete -c orv-h264 -n $subcommand -l files-from -r -F -d "Read the files of a list, too"
    complete -c orv-h264 -n $subcommand -s 0 -l null -d "In the list a zero byte ends a path"
    complete -c orv-h264 -n $subcommand -l jobs -x -d "Read so many files at once"
end
for subcommand in $of_inspect $of_frames
    complete -c orv-h264 -n $subcommand -l limit -x -d "Stop after that many"
end
complete -c orv-h264 -n $of_inspect -l nals -d "Units only, without their elements"
complete -c orv-h264 -n $of_inspect -l positions -d "Show every element and where it lies"
complete -c orv-h264 -n $of_inspect -l long-names -d "Name the units as H.264 does"
complete -c orv-h264 -n $of_inspect -l only -x -d "Show these NAL units only, for example 7,8 or sps,pps"
complete -c orv-h264 -n $of_frames -l fields -l split-fields -d "Show each field by itself"
complete -c orv-h264 -n $of_frames -l output-order -d "Show frames in output order"
complete -c orv-h264 -n $of_report -s o -l output -r -F -d "Where the page goes"
complete -c orv-h264 -n $of_convert -l to -x -a $framings -d "The framing to write"
complete -c orv-h264 -n $of_convert -l avcc -r -F -d "Write the decoder configuration record"
complete -c orv-h264 -n $of_convert -l parameter-sets -r -F -d "Take parameter sets from a record"
complete -c orv-h264 -n $of_edit -l set -x -d "Give an element a value"
complete -c orv-h264 -n $of_edit -l delete -x -d "Leave out units of these types"
complete -c orv-h264 -n $of_edit -l insert -x -d "Put a unit in"
complete -c orv-h264 -n $of_edit -l remove-sei -x -d "Leave out SEI messages of these types"
complete -c orv-h264 -n $of_edit -l insert-sei -x -d "Put user data into an SEI message"
complete -c orv-h264 -n $of_edit -l sei-at -x -a "first idr picture" -d "Before which pictures"
complete -c orv-h264 -n $of_edit -l add-aud -d "Put access unit delimiters in"
complete -c orv-h264 -n $of_edit -l remove-aud -d "Leave access unit delimiters out"
complete -c orv-h264 -n $of_edit -l remove-filler -d "Leave filler out"
complete -c orv-h264 -n $of_edit -l repeat-headers -d "Parameter sets before each IDR picture"
complete -c orv-h264 -n $of_edit -l sar -x -d "Sample aspect ratio"
complete -c orv-h264 -n $of_edit -l rate -x -d "Frames in a second"
complete -c orv-h264 -n $of_edit -l level -x -a "auto 1 1b 1.1 1.2 1.3 2 2.1 2.2 3 3.1 3.2 4 4.1 4.2 5 5.1 5.2 6 6.1 6.2" -d "The level"
complete -c orv-h264 -n $of_edit -l colour -x -d "Primaries, transfer and matrix"
complete -c orv-h264 -n $of_edit -l crop -x -d "Luma samples to cut off"
complete -c orv-h264 -n $of_edit -l full-range -x -a "on off" -d "Whether samples use all values"
complete -c orv-h264 -n $of_edit -l force -d "Write what decodes otherwise, too"
complete -c orv-h264 -n $of_edit -l dry-run -d "Print what would change, and write nothing"
complete -c orv-h264 -n $of_edit -l json -d "Print JSON instead"
