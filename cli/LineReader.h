#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace kalim::cli {

// The lines of a file or of standard input as they arrive, so that a scenario can be typed or piped
// step by step. A line of more than 64 MiB is an error.
class LineReader {
public:
    // "-" stands for standard input.
    explicit LineReader(const std::string& path);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Whether there was another line.
    bool next();
    std::string_view line() const { return _line; }
    // Says "scenario.jsonl:12".
    std::string place() const { return _name + ":" + std::to_string(_number); }
    // Why there are no more lines, where that is not the end of the file.
    const std::optional<std::string>& error() const { return _error; }

private:
    std::string _name;
    std::FILE* _file;
    std::string _line;
    int _number = 0;
    std::optional<std::string> _error;
};

}  // namespace kalim::cli
