#include "cli/Complaint.h"

#include <cstdio>

#include "kalimkit/codec/TerminalText.h"

namespace kalim::cli {

void say(const std::string& sentence) {
    std::fprintf(stderr, "kalimkit: %s\n", codec::terminalText(sentence).c_str());
}

int complain(const std::string& sentence) {
    say(sentence);
    return failure;
}

}  // namespace kalim::cli
