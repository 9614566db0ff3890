#pragma once

#include <string>
#include <vector>

namespace kalim::store {

// $XDG_STATE_HOME/kalimkit/works.sqlite, in ~/.local/state where that is not set; empty where there
// is no home either.
std::string usualPath();

// Makes the folder and an empty file, for the user alone whatever the process's mask is. Nothing
// happens to a file that is there. 0, else the system's number of what went wrong.
int makePrivately(const std::string& path);
// Takes from everybody else what they may do with a file and with what SQLite keeps beside it.
void closeToOthers(const std::string& path);

bool isThere(const std::string& path);
// Whether there was one to remove.
bool removeFile(const std::string& path);
// Tells two files of one path apart; empty where there is none.
std::string identityOf(const std::string& path);

// Renames a file and what SQLite keeps beside it, so that a new one can take its place and nothing
// is lost. The new path; empty where that cannot be done.
std::string setAside(const std::string& path);
// All the files that were set aside, with what lay beside them.
std::vector<std::string> filesSetAside(const std::string& path);

}  // namespace kalim::store
