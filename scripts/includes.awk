# Reads every source file and checks the includes against the plan of the folders. Prints file:line: finding.

BEGIN {
    # A file includes its own folder and what is lower. Folders of the same height do not know each other, but for the exceptions below.
    height["platform"] = 1
    height["db"] = 2
    height["ui"] = 3
    height["app"] = 4
    height["print"] = 5
    height["sales"] = height["collect"] = height["van"] = height["container"] = height["totals"] = WORK = 6
    # The end of the day asks the card host for its sums, through the exchange that the card work has.
    may["totals van"] = 1
    height["desk"] = 7
    ROOF = 8
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

# A dialog is a class that is built on another one named a dialog: class CFooDlg : public ui::FullScreenDialog.
FILENAME ~ /\.h$/ && line ~ /^[ \t]*class[ \t].*:[ \t]*public[ \t].*(Dialog|Dlg)/ { holds_dialog[FILENAME] = 1 }
FILENAME ~ /(Dlg|Dialog)\.h$/ { holds_dialog[FILENAME] = 1 }

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

# src/<folder>/... -> folder; src/Screens.cpp -> ""
function folder_of(path,   parts) {
    if (split(path, parts, "/") < 3) return ""
    return parts[2]
}

function arrow(n,   a, b, ha, hb) {
    b = into[n]
    if (b == "") return
    if (from[n] ~ /^src\// && b !~ /^src\//) {
        say(from[n], at[n], "src includes nothing of " substr(b, 1, index(b, "/")) ": \"" text[n] "\"")
        return
    }
    if (from[n] ~ /^tools\// && b ~ /^(tests|bench)\//)
        say(from[n], at[n], "tools include nothing of " substr(b, 1, index(b, "/")) ": \"" text[n] "\"")
    if (b !~ /^src\//) return
    b = folder_of(b)
    hb = b == "" ? ROOF : height[b]
    if (from[n] ~ /^src\//) {
        a = folder_of(from[n])
        ha = a == "" ? ROOF : height[a]
        if (ha == 0) {
            say(from[n], at[n], "src/" a "/ has no place in the plan of the folders")
            return
        }
        if ((a " " b) in may) ha = WORK + 0.5
        if (a != b && ha == WORK && hb == WORK) {
            say(from[n], at[n], "the work folders do not know each other: " a " -> " b ": \"" text[n] "\"")
            return
        }
        if (a != b && ha <= hb) {
            say(from[n], at[n], "against the arrows: " a " -> " (b == "" ? "roof" : b) ": \"" text[n] "\"")
            return
        }
        if (a == b) return
    }
    if (hb == WORK && holds_dialog[into[n]] && from[n] !~ /^tests\// && from[n] != "src/Screens.cpp")
        say(from[n], at[n], "only src/Screens.cpp includes the dialogs of the work folders: \"" text[n] "\"")
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
