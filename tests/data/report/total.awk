# Bytes that fio reports for all jobs of the series; "-logs-" only prepare them. A copy counts once, by what it wrote.
/"jobname" : / { job = $0 }
/"(read|write)" : \{/ { direction = $1 }
/"io_bytes" : / && job !~ /All clients|-logs-/ {
    sub(/,/, "", $3)
    if (direction == "\"read\"")
        read = $3
    else if (direction == "\"write\"") {
        total += $3 > 0 ? $3 : read
        direction = ""
    }
}
END { printf "%d", total }
