# Joins the rows of the table with the figures and judges them. Files: figures (name, tab, figure),
# then rows. With partial=1 rows without figures are left out; else they are failures.

function figureOf(name) { return name ~ /^[0-9]+$/ ? name : figures[name] }

# 12345678 becomes 12,345,678.
function grouped(number,   text) {
    text = sprintf("%.0f", number) # "%d" ends at 2^31 in some awks
    while (match(text, /^[0-9]+[0-9][0-9][0-9](,|$)/)) {
        comma = index(text ",", ",") - 4
        text = substr(text, 1, comma) "," substr(text, comma + 1)
    }
    return text
}

function holds(figure, baseline, limit) {
    if (limit ~ /x$/)
        return figure <= baseline * (limit + 0)
    if (limit ~ /^\+/)
        return figure <= baseline + limit
    return 1
}

FNR == NR {
    split($0, pair, "\t")
    figures[pair[1]] = pair[2]
    next
}

FNR == 1 {
    format = "%-43s %14s  %-20s %14s %8s %7s  %s\n"
    printf format, "what", "this program", "compared with", "its figure", "ratio", "limit", ""
}

/^[^#]/ {
    split($0, row, / : /)
    figure = figureOf(row[2])
    baseline = figureOf(row[4])
    if (figure == "" || baseline == "") {
        if (partial)
            next
        verdict = "NO FIGURE"
    } else
        verdict = row[5] == "-" ? "" : (holds(figure, baseline, row[5]) ? "holds" : "TOO MUCH")
    if (verdict ~ /[A-Z]/)
        failed = 1
    ratio = baseline > 0 ? sprintf("%.3f", figure / baseline) : "-"
    printf format, row[1], grouped(figure), row[3], grouped(baseline), ratio, row[5], verdict
}

END { exit failed }
