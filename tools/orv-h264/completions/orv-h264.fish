# Completion of orv-h264 for fish.

set -l subcommands info inspect explain frames report check convert cut avcc help
set -l none "not __fish_seen_subcommand_from $subcommands"
set -l framings "annexb length1 length2 length3 length4"

complete -c orv-h264 -n $none -f
complete -c orv-h264 -n $none -a info -d "Tell what a stream is"
complete -c orv-h264 -n $none -a inspect -d "Show what a stream holds, unit by unit"
complete -c orv-h264 -n $none -a explain -d "Tell what a byte or bit of a stream belongs to"
complete -c orv-h264 -n $none -a frames -d "List the frames of a stream"
complete -c orv-h264 -n $none -a report -d "Write a page about a stream, for a browser"
complete -c orv-h264 -n $none -a check -d "Tell what a stream breaks of the standard"
complete -c orv-h264 -n $none -a convert -d "Write a stream in another framing"
complete -c orv-h264 -n $none -a cut -d "Write a part of a stream, or one of its layers"
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
set -l of_check "__fish_seen_subcommand_from check"
set -l of_convert "__fish_seen_subcommand_from convert"
set -l of_cut "__fish_seen_subcommand_from cut"
set -l of_avcc "__fish_seen_subcommand_from avcc"

for subcommand in $of_info $of_inspect $of_explain $of_frames $of_report $of_check $of_convert $of_cut
    complete -c orv-h264 -n $subcommand -l format -x -a $framings -d "The framing"
    complete -c orv-h264 -n $subcommand -l track -x -d "The track of a container"
    complete -c orv-h264 -n $subcommand -l max-unit -x -d "Report a longer unit instead of reading it"
end
for subcommand in $of_info $of_inspect $of_explain $of_frames $of_avcc
    complete -c orv-h264 -n $subcommand -l json -d "Print JSON instead"
    complete -c orv-h264 -n $subcommand -l csv -d "Print comma-separated columns instead"
    complete -c orv-h264 -n $subcommand -l tsv -d "Print tab-separated columns instead"
end
for subcommand in $of_info $of_frames $of_check
    complete -c orv-h264 -n $subcommand -l files-from -r -F -d "Read the files of a list, too"
    complete -c orv-h264 -n $subcommand -s 0 -l null -d "In the list a zero byte ends a path"
    complete -c orv-h264 -n $subcommand -l jobs -x -d "Read so many files at once"
end
for subcommand in $of_inspect $of_frames $of_check
    complete -c orv-h264 -n $subcommand -l limit -x -d "Stop after that many"
end
complete -c orv-h264 -n $of_inspect -l nals -d "Units only, without their elements"
complete -c orv-h264 -n $of_inspect -l positions -d "Show every element and where it lies"
complete -c orv-h264 -n $of_inspect -l long-names -d "Name the units as H.264 does"
complete -c orv-h264 -n $of_inspect -l only -x -d "Show these NAL units only, for example 7,8 or sps,pps"
complete -c orv-h264 -n $of_frames -l fields -l split-fields -d "Show each field by itself"
complete -c orv-h264 -n $of_frames -l output-order -d "Show frames in output order"
complete -c orv-h264 -n $of_report -s o -l output -r -F -d "Where the page goes"
complete -c orv-h264 -n $of_check -l json -d "Print JSON instead"
complete -c orv-h264 -n $of_check -l sarif -d "Print SARIF 2.1.0 instead"
complete -c orv-h264 -n $of_check -l junit -d "Print JUnit instead"
complete -c orv-h264 -n $of_check -l ignore -x -d "Pass these rules over"
complete -c orv-h264 -n $of_check -l only -x -d "Look with these rules alone"
complete -c orv-h264 -n $of_check -l profile -r -F -a "disc low-latency streaming" -d "Look with a delivery profile too"
complete -c orv-h264 -n $of_check -l hrd -d "Show how full the buffers of the HRD are"
complete -c orv-h264 -n $of_check -l rules -d "List the rules"
complete -c orv-h264 -n $of_check -l explain -x -d "Tell of a rule"
complete -c orv-h264 -n $of_cut -l from -x -d "The first picture that is written"
complete -c orv-h264 -n $of_cut -l to -x -d "The first picture that is not written"
complete -c orv-h264 -n $of_cut -l key -d "Go back to a key picture"
complete -c orv-h264 -n $of_cut -l only -x -d "Write these NAL units only, for example 7,8 or sps,pps"
complete -c orv-h264 -n $of_cut -l base -d "Write the base layer or view alone"
complete -c orv-h264 -n $of_cut -l layer -x -d "Write what this layer needs"
complete -c orv-h264 -n $of_cut -l view -x -d "Write what this view needs"
complete -c orv-h264 -n $of_cut -l rate -x -d "Count times at so many pictures a second"
complete -c orv-h264 -n $of_cut -l json -d "Print a JSON object about what was written"
complete -c orv-h264 -n $of_convert -l to -x -a $framings -d "The framing to write"
complete -c orv-h264 -n $of_convert -l avcc -r -F -d "Write the decoder configuration record"
complete -c orv-h264 -n $of_convert -l parameter-sets -r -F -d "Take parameter sets from a record"
