#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/ToolClass.h"

namespace kalim {

// No document has more tools, and no file of one more bytes.
inline constexpr std::size_t mostDocumentTools = 100'000;
inline constexpr std::size_t longestDocument = std::size_t{1} << 30U;

// Writes JSON, UTF-8, with a line feed at its end; the same bytes for equal documents. The keys are
// those of docs/kalim.schema.json.
KALIM_API std::string documentText(const Document& document);

// What was read, or what is wrong with it: the first place that is, such as
// "tools[3].startPoint must be ...".
struct ReadDocument {
    Document document;
    std::optional<std::string> problem;
};
struct DocumentReading {
    // Whether the picture's bytes, or where they are, must be in the text.
    bool needsBytes = true;
};
// Where the picture's bytes are in the text, they have been found to fit their hash.
// Tools of classes that ToolRegistry::current() does not know are kept as they are.
KALIM_API ReadDocument readDocument(std::string_view text, const DocumentReading& reading = {});

}  // namespace kalim
