# Reads every source file and checks the includes against the plan of the folders. Prints file:line: finding.

BEGIN {
    # What a room may include besides itself. The rules of a work, and of print, know no widget; their screens/ stand above.
    may["platform"] = " "
    may["lines"] = " platform "
    may["db"] = " platform "
    may["books"] = may["db"] "db "
    may["print"] = may["books"] "books "
    may["ui"] = " platform "
    may["app"] = may["books"] "books ui "
    split("sales collect van container totals", works, " ")
    for (i in works) {
        may[works[i]] = may["print"] "print "
        may[works[i] "/screens"] = may["app"] "app print " works[i] " "
    }
    may["print/screens"] = may["app"] "app print "
    # The end of the day asks the card host for its sums, through the exchange that the card work has.
    may["totals/screens"] = may["totals/screens"] "van van/screens "
    may["desk/demo"] = " platform "
    may["desk"] = may["app"] "app print desk/demo "
    for (i = 1; i < ARGC; i++) known[ARGV[i]] = 1
    findings = 0
}

FNR == 1 { in_comment = 0 }

{
    line = $0
    sub(/\r$/, "", line)
    if (in_comment) {
        if (!match(line, /\*\//)) next
        line = substr(line, RSTART + 2)
        in_comment = 0
    }
    sub(/\/\/.*/, "", line)
    if (match(line, /^[ \t]*\/\*/)) {
        if (line !~ /\*\//) {
            in_comment = 1
            next
        }
        sub(/^[ \t]*\/\*.*\*\//, "", line)
    }
}

line ~ /^[ \t]*#[ \t]*include[ \t]*</ {
    name = line
    sub(/^[^<]*</, "", name)
    sub(/>.*/, "", name)
    if (name ~ /^(Qt[A-Za-z0-9]+\/)?Qt(Core|Gui|Widgets|Network|Svg|SvgWidgets|Test|Sql|Concurrent|DBus|Xml|OpenGL|OpenGLWidgets|PrintSupport|SerialPort)$/)
        say(FILENAME, FNR, "<" name "> draws in a whole module: include the single headers")
    else if (name == "bits/stdc++.h")
        say(FILENAME, FNR, "<" name "> draws in the whole library: include the single headers")
}

line ~ /^[ \t]*#[ \t]*include[ \t]*"/ {
    name = line
    sub(/^[^"]*"/, "", name)
    sub(/".*/, "", name)
    n = ++includes
    from[n] = FILENAME
    at[n] = FNR
    text[n] = name
    into[n] = resolve(FILENAME, name)
}

END {
    for (n = 1; n <= includes; n++) arrow(n)
    for (n = 1; n <= includes; n++)
        if (into[n] != "" && from[n] ~ /^(src|tools)\// && into[n] ~ /^(src|tools)\//)
            edges[from[n]] = edges[from[n]] " " n
    for (n = 1; n <= includes; n++)
        if (!(from[n] in state)) walk(from[n], 0)
    exit (findings > 0)
}

function say(file, row, what) {
    printf "%s:%d: %s\n", file, row, what
    findings++
}

# The file of this repository that the include means, or "" when it is another's.
function resolve(file, name,   path) {
    path = file
    sub(/[^\/]*$/, "", path)
    path = tidy(path name)
    if (path in known) return path
    if (("src/" name) in known) return "src/" name
    if (("tools/" name) in known) return "tools/" name
    if (("tests/" name) in known) return "tests/" name
    return ""
}

function tidy(path) {
    while (path ~ /\/\.\//) sub(/\/\.\//, "/", path)
    while (match(path, /[^\/.][^\/]*\/\.\.\//)) path = substr(path, 1, RSTART - 1) substr(path, RSTART + RLENGTH)
    return path
}

# src/<folder>/... -> folder, src/<folder>/screens/... -> folder/screens (demo likewise), src/Screens.cpp -> ""
function room_of(path,   parts) {
    if (split(path, parts, "/") < 3) return ""
    return parts[3] == "screens" || parts[3] == "demo" ? parts[2] "/" parts[3] : parts[2]
}

function arrow(n,   a, b) {
    b = into[n]
    if (b == "") return
    if (from[n] ~ /^src\// && b !~ /^src\//) {
        say(from[n], at[n], "src includes nothing of " substr(b, 1, index(b, "/")) ": \"" text[n] "\"")
        return
    }
    if (from[n] ~ /^tools\// && b ~ /^(tests|bench)\//)
        say(from[n], at[n], "tools include nothing of " substr(b, 1, index(b, "/")) ": \"" text[n] "\"")
    if (from[n] !~ /^src\// || b !~ /^src\//) return
    a = room_of(from[n])
    b = room_of(b)
    if (a == "" || a == b) return
    if (!(a in may))
        say(from[n], at[n], "src/" a "/ has no place in the plan of the folders")
    else if (index(may[a], " " b " ") == 0)
        say(from[n], at[n], "against the arrows: " a " -> " (b == "" ? "roof" : b) ": \"" text[n] "\"")
}

# Depth first; an include of a file that is still open closes a cycle.
function walk(file, depth,   list, count, i, n, j, cycle) {
    state[file] = 1
    stack[depth] = file
    count = split(edges[file], list, " ")
    for (i = 1; i <= count; i++) {
        n = list[i] + 0
        if (!(into[n] in state)) {
            walk(into[n], depth + 1)
        } else if (state[into[n]] == 1) {
            cycle = into[n]
            for (j = depth; j >= 0 && stack[j] != into[n]; j--) cycle = stack[j] " -> " cycle
            say(from[n], at[n], "include cycle: " into[n] " -> " cycle)
        }
    }
    state[file] = 2
}
