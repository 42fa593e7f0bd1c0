# fish completion of corvanta_host, which itself knows what can come next.
function __corvanta_host_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in ($words[1] __complete $words[2..] "$current" 2>/dev/null)
        switch $line
            case ':files'
                __fish_complete_path "$current"
            case ':files *'
                set -l extensions (string replace ':files ' '' -- $line | string replace -a ' ' '|')
                for path in (__fish_complete_path "$current")
                    string match -qri '(/|\.('$extensions'))(\t.*)?$' -- $path; and echo $path
                end
            case '*'
                echo $line
        end
    end
end

complete -c corvanta_host -f -a '(__corvanta_host_complete)'
