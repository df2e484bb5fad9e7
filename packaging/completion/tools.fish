# Completes the command lines of qal, mkik and ikcheck in fish: the tool itself tells what may follow.

# Files that are called like one of the patterns, folders, and where there are neither, any file.
function __fish_qal_tools_files --argument-names begun
    set -l all (__fish_complete_path $begun)
    set -l found
    for entry in $all
        set -l file (string split -f 1 \t -- $entry)
        for pattern in '*/' $argv[2..]
            string match -q -- $pattern $file; and set -a found $file
        end
    end
    set -q found[1]; or set found $all
    printf '%s\n' $found
end

function __fish_qal_tools
    set -l words (commandline -opc) (commandline -ct)
    set -l tool (string replace -r '^~' $HOME -- $words[1])
    set -l parts (string match -r -- '^(--[^=]*=)(.*)$' $words[-1])
    set -l before $parts[2]
    set -l begun $words[-1]
    set -q parts[3]; and set begun $parts[3]
    for line in ($tool --complete-words $words[2..] 2>/dev/null)
        set -l fields (string split \t -- $line)
        if test "$fields[1]" = files:
            for file in (__fish_qal_tools_files $begun (string split ' ' -- $fields[2]))
                printf '%s\n' "$before"$file
            end
        else
            printf '%s\n' "$before"$line
        end
    end
end

for tool in qal mkik ikcheck
    complete -c $tool -e
    complete -c $tool -f -a '(__fish_qal_tools)'
end
