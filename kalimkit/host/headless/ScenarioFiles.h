#pragma once

#include <optional>
#include <string>

#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

class MDrawView;

// Where the pictures of a scenario come from and go to. A player's maker supplies it: a program
// reads files, a test hands out pictures of its own.
class KALIM_API ScenarioFiles {
public:
    // A picture, or one sentence for the user that names the path and says why there is none.
    struct LoadedPicture {
        gfx::ImageRef image;
        std::string error;
    };

    virtual ~ScenarioFiles() = default;

    virtual LoadedPicture loadPicture(const std::string& path) = 0;
    // Answers with nothing on success, else with a sentence of the same kind.
    virtual std::optional<std::string> savePicture(const std::string& path,
                                                   const gfx::ImageRef& image) = 0;
    // The same of what the canvas has just handed out, whose file can keep what nothing covers as
    // it is. The default is the one above.
    virtual std::optional<std::string> saveExport(const std::string& path,
                                                  const gfx::ImageRef& image,
                                                  const MDrawView& canvas);

    // ---- documents; the defaults have none and say so
    // A document and its picture, null for one without, or a sentence of that kind.
    struct LoadedDocument {
        Document document;
        gfx::ImageRef picture;
        std::optional<std::string> error;
    };
    virtual LoadedDocument loadDocument(const std::string& path);
    struct DocumentSaving {
        // It may be given away.
        bool isSealed = false;
        // Its picture stays in the file that it came from.
        bool isLinked = false;
    };
    // What is on the canvas, which ends what is under way.
    virtual std::optional<std::string> saveDocument(const std::string& path, MDrawView& canvas,
                                                    const DocumentSaving& saving);
};

}  // namespace kalim
