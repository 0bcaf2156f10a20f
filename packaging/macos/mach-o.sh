# shellcheck shell=bash
# Sourced. Functions that tell what the programs and libraries in an application need.

# code_files APP: every program and library in it.
code_files() {
    find "$1/Contents" -type f \( -perm -u+x -o -name '*.dylib' \
        -o -path '*.framework/Versions/*' -name 'Qt*' \)
}

# load_commands FILE: "needs LIBRARY", "rpath FOLDER" and "minos VERSION" lines.
load_commands() {
    otool -l "$1" | awk '
        $1 == "cmd" { command = $2 }
        { value = $0; sub(/^ *[a-z]+ /, "", value); sub(/ \(offset [0-9]+\)$/, "", value) }
        $1 == "name" && command ~ /^LC_(LOAD|REEXPORT|LAZY_LOAD).*DYLIB$/ { print "needs " value }
        $1 == "path" && command == "LC_RPATH" { print "rpath " value }
        $1 == "minos" || $1 == "version" && command == "LC_VERSION_MIN_MACOSX" { print "minos " $2 }'
}

# newest VERSION...: the highest version.
newest() {
    printf '%s\n' "$@" | sort -V | tail -1
}

# wanted_system APP: the oldest macOS that all of its files run on.
wanted_system() {
    local file versions=(0)
    while IFS= read -r file; do
        # shellcheck disable=SC2207 # a version is one word
        versions+=($(load_commands "$file" | sed -n 's/^minos //p'))
    done < <(code_files "$1")
    newest "${versions[@]}"
}

# expand PATH FILE APP: PATH in FILE as the loader resolves it. "@executable_path" is the folder of
# the running program: of Quorlin, or of the tool if FILE is one.
expand() {
    local program=$3/Contents/MacOS
    case ${2#"$3"} in */tools/*) program=$(dirname "$2") ;; esac
    case $1 in
    @loader_path/*) echo "$(dirname "$2")/${1#*/}" ;;
    @executable_path/*) echo "$program/${1#*/}" ;;
    *) echo "$1" ;;
    esac
}

# is_inside LIBRARY FILE APP: whether the library that FILE needs is in the application.
is_inside() {
    local library=$1 file=$2 app=$3 folder candidates=()
    if [[ $library == @rpath/* ]]; then
        while IFS= read -r folder; do
            candidates+=("$(expand "$folder/" "$file" "$app")${library#@rpath/}")
        done < <({ load_commands "$file"; load_commands "$app/Contents/MacOS/Quorlin"; } |
            sed -n 's/^rpath //p')
    else
        candidates=("$(expand "$library" "$file" "$app")")
    fi
    for library in ${candidates[@]+"${candidates[@]}"}; do
        [[ -f $library && $(cd "$(dirname "$library")" && pwd -P)/ == "$(cd "$app" && pwd -P)"/* ]] &&
            return
    done
    return 1
}

# missing_libraries APP: "LIBRARY<tab>FILE" for each library that FILE needs and that is neither the
# system's nor in the application.
missing_libraries() {
    local file library
    while IFS= read -r file; do
        while IFS= read -r library; do
            case $library in
            /usr/lib/* | /System/*) continue ;;
            esac
            is_inside "$library" "$file" "$1" || printf '%s\t%s\n' "$library" "$file"
        done < <(load_commands "$file" | sed -n 's/^needs //p')
    done < <(code_files "$1")
}
