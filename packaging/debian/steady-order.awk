# Sorts what stands in a row of declarations of registers: qmlcachegen 6.4 writes them by where they were in memory, which
# is another place each time.
function flush(   i, j, line)
{
    for (i = 2; i <= count; i++) {
        line = row[i]
        for (j = i - 1; j >= 1 && row[j] > line; j--) row[j + 1] = row[j]
        row[j + 1] = line
    }
    for (i = 1; i <= count; i++) print row[i]
    count = 0
}
/^[A-Za-z_][A-Za-z0-9_:<>, ]* \*?r[0-9]+_[0-9]+;$/ { row[++count] = $0; next }
{ flush(); print }
END { flush() }
