# The rules behind tools/check-layers. Reads the names of the files, one a line, from standard input.

BEGIN {
    # Room and floor. Rooms on floor 10 are programs, which may include everything.
    floors = "gfx 0  codec 1  backend/cairo 1  backend/html 1  ui 2  canvas/model 3 " \
        "imageedit/image 3  shell/config 3  shapes 4  imageedit/mosaic 5  canvas/view 6 " \
        "imageedit/crop 6  imageedit/album 6  shell/bar 7  shell/picker 7  shell/sheet 7 " \
        "shell/editor 8  host/headless 9  host/sdl 9  host/browser 9"
    count = split(floors, word, " ")
    for (i = 1; i < count; i += 2) floorOf[word[i]] = word[i + 1]
    programFloor = 10

    # Rooms that may name a backend or the codec, and rooms that run only where there is a system:
    # these alone may use its headers. All others must also build for the web.
    namesBackends["host/sdl"] = namesBackends["host/browser"] = 1
    native["codec"] = native["backend/cairo"] = native["host/sdl"] = 1

    # Which rooms may use which other library, by the beginning of the header's name.
    count = split("cairo pango fontconfig ft2build jpeglib jerror png zlib webp lcms SDL nlohmann " \
        "CLI fmt gtest gmock benchmark emmintrin", library, " ")
    libraries["backend/cairo"] = "cairo pango fontconfig ft2build"
    libraries["codec"] = "jpeglib jerror png zlib webp lcms"
    libraries["host/sdl"] = "SDL"
    libraries["host/headless"] = "nlohmann"
    # The compiler's own, for processors that have what it names.
    libraries["imageedit/image"] = "emmintrin"

    # Standard headers that cost the web build dearly or that need a system under them.
    count2 = split("iostream fstream sstream filesystem format regex thread mutex shared_mutex " \
        "condition_variable future random csignal", word, " ")
    for (i = 1; i <= count2; i++) heavy[word[i]] = 1
}

{ check($0) }

END {
    for (i = 1; i <= publicCount; i++) {
        header = publicHeaders[i]
        for (j = 1; j <= edges[header]; j++) checkPublicInclude(header, j)
    }
    if (!problems) print fileCount " files keep to the floors"
    exit problems ? 1 : 0
}

function complain(file, line, message) {
    print file (line ? ":" line : "") ": " message
    problems++
}

# The room of a file named from the root; empty for none.
function roomOf(path,   parts, n) {
    n = split(path, parts, "/")
    if (parts[1] != "kalimkit") return n > 1 && parts[1] ~ /^(cli|tests|bench|examples)$/ ? parts[1] : ""
    if (n > 2 && (parts[2] in floorOf)) return parts[2]
    if (n > 3 && ((parts[2] "/" parts[3]) in floorOf)) return parts[2] "/" parts[3]
    return ""
}

function floorAt(room) { return (room in floorOf) ? floorOf[room] : programFloor }

# The library that a header belongs to; empty for the standard library's and the system's.
function libraryOf(header,   k) {
    for (k = 1; k <= count; k++) {
        if (header ~ ("^" library[k] "[-./0-9_a-zA-Z]*$") && header ~ /[.\/]/) return library[k]
    }
    return ""
}

function check(file,   line, number, room, name, isPublic) {
    fileCount++
    room = roomOf(file)
    if (room == "") {
        complain(file, 0, "lies in no room")
        return
    }
    while ((getline line < file) > 0) {
        number++
        if (line ~ /KALIM_API/ && file ~ /^kalimkit\/.*\.h$/) isPublic = 1
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
    if (isPublic) publicHeaders[++publicCount] = file
}

function checkOwn(file, number, room, name,   other) {
    other = roomOf(name)
    if (name ~ /^kalimkit\// && other == "") {
        complain(file, number, name " lies in no room")
    } else if (other == "" || (name !~ /^kalimkit\// && floorAt(room) < programFloor)) {
        complain(file, number, "\"" name "\" is not named from the root of the library")
    } else if (room != other && floorAt(room) < programFloor) {
        if (floorAt(other) >= floorAt(room)) {
            complain(file, number, room " (floor " floorAt(room) ") must not include " other \
                " (floor " floorAt(other) ")")
        } else if (floorAt(other) == 1 && !(room in namesBackends)) {
            complain(file, number, "only programs and window hosts may include " other)
        }
    }
}

function checkAngle(file, number, room, name,   owner, allowed) {
    if (floorAt(room) >= programFloor) return
    owner = libraryOf(name)
    if (owner != "") allowed = (" " libraries[room] " ") ~ (" " owner " ")
    else if (room in native) allowed = 1
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
    }
}
