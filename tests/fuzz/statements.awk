# Prints STATEMENT(u"...") for every db::Statement<u"..."> of the sources, so that no statement is left out.
# A use that it cannot read is an error.

function flush_file(    rest, found) {
    rest = content
    while ((found = index(rest, "Statement<")) > 0) {
        rest = substr(rest, found + length("Statement<"))
        if (!match(rest, /^[ \n]*u"[^"]*"([ \n]*u"[^"]*")*[ \n]*>/)) {
            print name ": a statement that is no literal: " substr(rest, 1, 60) >"/dev/stderr"
            exit failed = 1
        }
        text = substr(rest, 1, RLENGTH - 1)
        gsub(/[ \n]+u"/, " u\"", text)
        sub(/^[ \n]+/, "", text)
        if (!(text in seen)) print "STATEMENT(" text ")"
        seen[text] = 1
    }
    content = ""
}

FNR == 1 && NR > 1 { flush_file() }
{
    name = FILENAME
    sub(/^[ ]*\/\/.*/, "")
    content = content $0 "\n"
}
END { if (!failed) flush_file() }
