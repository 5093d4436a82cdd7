# Filled in where git makes a source archive: the commit, and its time in seconds since 1970.
set(archived_commit "$Format:%H$")
set(archived_time "$Format:%ct$")
