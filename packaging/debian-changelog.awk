# awk -v maintainer=... -v date=... -f debian-changelog.awk CHANGELOG.md
# The change log in Debian's form. `date` is for a version that is not released yet; one that is
# has the day of its release in its heading: "## 2.0.0, 2026-12-24".

function end_of_version() {
    if (version)
        printf "\n -- %s  %s\n\n", maintainer, released
}

function rfc_date(day,    result) {
    ("LC_ALL=C date -u -R -d " day) | getline result
    return result
}

# An item, in lines of at most 79 characters.
function print_item(    i, n, words, line) {
    n = split(item, words, " ")
    line = "  *"
    for (i = 1; i <= n; ++i) {
        if (length(line " " words[i]) > 79) {
            print line
            line = "   "
        }
        line = line " " words[i]
    }
    if (n)
        print line
    item = ""
}

/^## / {
    print_item()
    end_of_version()
    version = $2
    sub(",", "", version)
    unreleased = $3 !~ /^[0-9]+-[0-9]+-[0-9]+$/
    released = unreleased ? date : rfc_date($3)
    printf "quoravel (%s) %s; urgency=medium\n\n", version, unreleased ? "UNRELEASED" : "unstable"
    next
}
/^- /   { print_item(); item = substr($0, 3); next }
/^ +/   { item = item $0 }
END     { print_item(); end_of_version() }
