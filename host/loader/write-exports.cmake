# Writes a version script that exports the core entries of LIST (rows whose last column is empty) and the names of
# the comma-separated MORE, nothing else.
file(READ ${LIST} rows)
string(REGEX MATCHALL "ENTRY\\([^\n]*, \"\"\\)\n" rows "${rows}")
set(names)
foreach(row IN LISTS rows)
    string(REGEX REPLACE "^ENTRY\\([^,]*, ([A-Za-z0-9_]+),.*" "\\1" name "${row}")
    list(APPEND names ${name})
endforeach()
string(REPLACE "," ";" MORE "${MORE}")
list(APPEND names ${MORE})
list(JOIN names ";\n        " names)
file(WRITE ${MAP} "{\n    global:\n        ${names};\n    local:\n        *;\n};\n")
