#include "cli/LineReader.h"

#include <cerrno>
#include <cstring>

namespace kalim::cli {

namespace {

constexpr std::size_t longestLine = std::size_t{64} << 20U;

}  // namespace

LineReader::LineReader(const std::string& path)
    : _name(path == "-" ? "standard input" : path),
      _file(path == "-" ? stdin : std::fopen(path.c_str(), "r")) {
    if (!_file) _error = _name + ": " + std::strerror(errno);
}

LineReader::~LineReader() {
    if (_file && _file != stdin) std::fclose(_file);
}

bool LineReader::next() {
    if (!_file) return false;
    _line.clear();
    ++_number;
    for (int letter = ::getc_unlocked(_file); letter != EOF; letter = ::getc_unlocked(_file)) {
        _line += static_cast<char>(letter);
        if (letter == '\n') return true;
        if (_line.size() <= longestLine) continue;
        _error = place() + ": the line is longer than 64 MiB";
        return false;
    }
    if (std::ferror(_file)) _error = _name + ": " + std::strerror(errno);
    return !_error && !_line.empty();
}

}  // namespace kalim::cli
