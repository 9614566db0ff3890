#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

class CanvasContent;
class CanvasExport;
class CanvasHome;
class CanvasPainter;
class CanvasPen;
class CanvasTools;
class CanvasTyping;
struct CanvasShown;
struct SealedDocument;

// A canvas as a document, and back.
class CanvasDocument {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasShown& shown;
        CanvasTools& tools;
        CanvasContent& content;
        CanvasPainter& painter;
        CanvasTyping& typing;
        CanvasExport& exports;
    };
    explicit CanvasDocument(const Canvas& canvas) : _canvas(canvas) {}

    // Ends what is under way; see MDrawView::document() and sealedDocument().
    Document document();
    SealedDocument sealed();
    // All but the tools, of the canvas as it is.
    Document head() const;

    // ---- opening
    // Why it cannot be opened with this picture; nothing where it can.
    static std::optional<std::string> problemOf(const Document& document,
                                                const gfx::ImageRef& picture);
    static CanvasPicture::Settlement settlementOf(const Document& document);
    // The canvas has nothing on it, and keeps nothing of what it had
    void takeHead(const Document& document);
    // The tools of the document, finished and without steps, in drawing order.
    ToolList toolsOf(const Document& document) const;
    // The next picture is another one.
    void forget() { _head = {}; }

private:
    static void dropUnknown(Document& document);
    gfx::ImageRef pictureWithPatches() const;

    Canvas _canvas;
    // Of the document that was opened: what of it is not the canvas's business, but is to be there
    // again when it is saved.
    Document _head;
};

}  // namespace kalim
