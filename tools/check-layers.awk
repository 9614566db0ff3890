# The rules behind tools/check-layers. Reads the names of the files, one a line, from standard input, the
# rooms from the file `floors` and the installed headers from the file `list`.

BEGIN {
    while ((getline line < floors) > 0) readRoom(line)
    close(floors)
    while ((getline line < list) > 0) if (line ~ /^kalimkit\//) isListed[line] = 1
    close(list)
    count = split("cairo pango fontconfig fribidi ft2build jpeglib jerror png zlib webp lcms libexif SDL nlohmann " \
        "CLI fmt gtest gmock benchmark emmintrin", library, " ")

    # Standard headers that cost the web build dearly or that need a system under them.
    count2 = split("iostream fstream sstream filesystem format regex thread mutex shared_mutex " \
        "condition_variable future random csignal", word, " ")
    for (i = 1; i <= count2; i++) heavy[word[i]] = 1
}

{ check($0) }

# Reads a line of the list of floors.
function readRoom(line,   word, n, i) {
    sub(/#.*/, "", line)
    n = split(line, word, " ")
    if (n < 3) return
    floorOf[word[2]] = word[1]
    if (word[3] == "program") isProgram[word[2]] = 1
    for (i = 4; i <= n; i++) mayUse[word[2], word[i]] = 1
}

END {
    for (header in isListed) {
        if (!(header in isThere)) complain(list, 0, "there is no " header)
        for (j = 1; j <= edges[header]; j++) checkPublicInclude(header, j)
    }
    if (!problems) print fileCount " files keep to the floors"
    exit problems ? 1 : 0
}

function complain(file, line, message) {
    print file (line ? ":" line : "") ": " message
    problems++
}

# Names the room of a file named from the root; empty means none. A room that is a header has sources beside
# it: Editor.cpp and EditorPictures.cpp.
function roomOf(path,   folder, header) {
    folder = path
    if (!sub(/^kalimkit\//, "", folder)) {
        sub(/\/.*/, "", folder)
        return folder != path && (folder in isProgram) ? folder : ""
    }
    sub(/\.cpp$/, ".h", folder)
    if (folder in floorOf) return folder
    header = folder
    if (sub(/[A-Z][a-z]*\.h$/, ".h", header) && header in floorOf) return header
    while (sub(/\/[^\/]*$/, "", folder)) {
        if ((folder in floorOf) && !(folder in isProgram)) return folder
    }
    return ""
}

# The library that a header belongs to; empty for the standard library's and the system's.
function libraryOf(header,   k) {
    for (k = 1; k <= count; k++) {
        if (header ~ ("^" library[k] "[-./0-9_a-zA-Z]*$") && header ~ /[.\/]/) return library[k]
    }
    return ""
}

function check(file,   line, number, room, name, exports) {
    fileCount++
    isThere[file] = 1
    room = roomOf(file)
    if (room == "") {
        complain(file, 0, "lies in no room")
        return
    }
    while ((getline line < file) > 0) {
        number++
        if (line ~ /KALIM_API/ && line !~ /^(#define|\/\/)/) exports = 1
        if (line !~ /^[ \t]*#[ \t]*include[ \t]*["<]/) continue
        name = line
        sub(/^[^"<]*["<]/, "", name)
        sub(/[">].*$/, "", name)
        edges[file]++
        target[file, edges[file]] = name
        lineOf[file, edges[file]] = number
        if (line ~ /</) checkAngle(file, number, room, name)
        else checkOwn(file, number, room, name)
    }
    close(file)
    if (exports && file ~ /^kalimkit\/.*\.h$/ && !(file in isListed)) {
        complain(file, 0, "exports something and is not in " list)
    }
}

function checkOwn(file, number, room, name,   other) {
    other = roomOf(name)
    if (name ~ /^kalimkit\// && other == "") {
        complain(file, number, name " lies in no room")
    } else if (other == "" || (name !~ /^kalimkit\// && !(room in isProgram))) {
        complain(file, number, "\"" name "\" is not named from the root of the library")
    } else if (room != other && !(room in isProgram)) {
        if (floorOf[other] + 0 >= floorOf[room] + 0) {
            complain(file, number, room " (floor " floorOf[room] ") must not include " other \
                " (floor " floorOf[other] ")")
        } else if (floorOf[other] == 1 && !((room, "backends") in mayUse)) {
            complain(file, number, "only programs and window hosts may include " other)
        }
    }
}

function checkAngle(file, number, room, name,   owner, allowed) {
    if (room in isProgram) return
    owner = libraryOf(name)
    if (owner != "") allowed = (room, owner) in mayUse
    else if ((room, "system") in mayUse) allowed = 1
    else allowed = name !~ /[.\/]/ && !(name in heavy)
    if (!allowed) complain(file, number, "<" name "> is not for " room)
}

# The other library's header that a header of ours brings in, directly or through headers of ours.
function broughtIn(header,   k, found) {
    if (header in brings) return brings[header]
    brings[header] = ""
    for (k = 1; k <= edges[header] && found == ""; k++) {
        if (libraryOf(target[header, k]) != "") found = target[header, k]
        else found = broughtIn(target[header, k])
    }
    return brings[header] = found
}

function checkPublicInclude(header, k,   name, found) {
    name = target[header, k]
    if (libraryOf(name) != "") {
        complain(header, lineOf[header, k], "public header includes <" name ">")
    } else if ((found = broughtIn(name)) != "") {
        complain(header, lineOf[header, k], "public header includes " name \
            ", which brings in <" found ">")
    } else if (name ~ /^kalimkit\// && !(name in isListed)) {
        complain(header, lineOf[header, k], "public header includes " name ", which is not in " list)
    }
}
