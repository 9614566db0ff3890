// A document's text; what was read is written as a text that reads as the same.

#include "fuzz/Fuzzing.h"
#include "kalimkit/document/DocumentText.h"

KALIM_FUZZ(document, input) {
    using namespace kalim;
    const ReadDocument read = readDocument(fuzz::textOf(input), {.needsBytes = false});
    if (read.problem) return;
    const std::string text = documentText(read.document);
    const ReadDocument again = readDocument(text, {.needsBytes = false});
    fuzz::require(!again.problem, "a document that was written can be read");
    fuzz::require(documentText(again.document) == text, "it is written as before");
}
