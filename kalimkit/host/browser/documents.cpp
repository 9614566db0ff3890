#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/SealedDocument.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/browser/BrowserImports.h"
#include "kalimkit/host/browser/PageEditor.h"
#include "kalimkit/host/browser/PagePictures.h"
#include "kalimkit/host/seat/ReopenQuestion.h"

// Documents that the page gives and takes. Those that are read wait by their numbers until the page
// has decoded their pictures.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

std::map<int, kalim::Document> waiting;
int lastNumber = 0;

// Texts of a work of before.
std::vector<std::string> told;

// What is being saved, and of one to be given away its picture, which the page encodes meanwhile.
std::optional<kalim::Document> saved;
std::shared_ptr<const kalim::gfx::HtmlRaster> sealedPicture;

// What keeps a page from opening it.
std::optional<std::string> problemOf(const kalim::Document& document) {
    if (!document.picture) return "picture is null: a page opens no document without one";
    if (document.picture->file.empty()) return std::nullopt;
    return "picture.file: a page does not reach \"" + document.picture->file +
           "\" beside the document";
}

// Of one that waits; null where there is none.
kalim::DocumentPicture* pictureOf(int number) {
    const auto found = waiting.find(number);
    return found != waiting.end() ? &*found->second.picture : nullptr;
}

// The first so many bytes, or as many as there are.
std::string_view takeFrom(std::string_view& rest, int length) {
    const auto taken = rest.substr(0, static_cast<std::size_t>(std::max(length, 0)));
    rest.remove_prefix(taken.size());
    return taken;
}

kalim::Document take(int number) {
    const auto node = waiting.extract(number);
    return node.empty() ? kalim::Document() : std::move(node.mapped());
}

}  // namespace

// ---- opening

// The buffer holds the text. Answers with a number; 0 for one that cannot be opened, and the answer
// says why.
KALIM_EXPORT("read_document") int readPageDocument(int length) {
    kalim::ReadDocument read = kalim::readDocument(kalim::pageText(length));
    kalim::dropPageText();
    if (!read.problem) read.problem = problemOf(read.document);
    if (read.problem) {
        kalim::setPageAnswer(*read.problem);
        return 0;
    }
    waiting.emplace(++lastNumber, std::move(read.document));
    return lastNumber;
}

// These two answer with a part of one that waits; the file can be had once.
KALIM_EXPORT("document_media_type") void documentMediaType(int number) {
    const kalim::DocumentPicture* const picture = pictureOf(number);
    kalim::setPageAnswer(picture ? picture->mediaType : std::string());
}

KALIM_EXPORT("document_file") void documentFile(int number) {
    kalim::DocumentPicture* const picture = pictureOf(number);
    kalim::setPageAnswer(picture ? std::exchange(picture->data, {}) : std::string());
}

// Whether its picture has the size that it says, pixels; if not, the answer says so.
KALIM_EXPORT("document_fits") bool documentFits(int number, int width, int height) {
    const kalim::DocumentPicture* const picture = pictureOf(number);
    if (picture && picture->size == kalim::gfx::PixelSize{width, height}) return true;
    kalim::setPageAnswer("picture.size is not that of the picture, which has " +
                         std::to_string(width) + " x " + std::to_string(height) + " pixels");
    return false;
}

// It is not wanted any more.
KALIM_EXPORT("drop_document") void dropDocument(int number) {
    waiting.erase(number);
}

// As open(), of a document that fits its picture.
KALIM_EXPORT("open_document")
void openDocument(int number, int picture, bool exportsAtPictureScale, bool grows, int length) {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    editor.environment().setLanguage(kalim::pageText(length));
    const kalim::gfx::ImageRef image = kalim::takePagePicture(picture);
    const kalim::Document document = take(number);
    editor.open(image, exportsAtPictureScale, grows);
    editor.openDocument(document, image);
    editor.show();
}

// As offer(), of a document that fits its picture.
KALIM_EXPORT("offer_document") void offerDocument(int number, int picture) {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    const kalim::gfx::ImageRef image = kalim::takePagePicture(picture);
    const auto document = std::make_shared<const kalim::Document>(take(number));
    if (auto* const remote = editor.seat().remote()) {
        remote->openPicture(image, [document, image](bool isOpened) {
            kalim::BrowserEditor* const page = kalim::pageEditor();
            if (isOpened && page && page->canvas()) page->openDocument(*document, image);
        });
    }
    editor.show();
}

// ---- works of before

// The buffer holds what the work began with, or one of its steps, told in their order before
// go_on().
KALIM_EXPORT("tell_work") void tellWork(int length) {
    told.emplace_back(kalim::pageText(length));
}

// As open(), of the work that was told. Whether all of it could be gone on with; if not, the answer
// says why, and what is right up to there is open.
KALIM_EXPORT("go_on") bool goOn(int picture, bool exportsAtPictureScale, bool grows, int length) {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    editor.environment().setLanguage(kalim::pageText(length));
    const kalim::gfx::ImageRef image = kalim::takePagePicture(picture);
    std::vector<std::string> work = std::exchange(told, {});
    // What the work began with is a text that is no document then.
    if (work.empty()) work.emplace_back();
    kalim::DocumentReading reading;
    reading.needsBytes = false;
    const kalim::ReadDocument start = kalim::readDocument(work.front(), reading);
    std::optional<std::string> problem = start.problem;
    editor.open(image, exportsAtPictureScale, grows);
    if (!problem) {
        problem = editor.openDocument(start.document, image, std::span(work).subspan(1));
    }
    if (problem) kalim::setPageAnswer(*problem);
    editor.show();
    return !problem;
}

// Asks the user whether to go on with the drawing that was found in the picture that is open.
KALIM_EXPORT("ask_to_reopen") void askToReopen() {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    kalim::askToReopen([](bool goesOn) {
        if (goesOn) kalim::page::onReopen();
    });
    editor.show();
}

// ---- saving: what the canvas holds is noted, the page brings the picture's file, and then takes
// the text.

// Answers with the number of the picture whose file is needed, for one to be given away, and else
// with 0; below zero where there is nothing to save, or no room.
KALIM_EXPORT("begin_document") int beginDocument(bool isSealed) {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    kalim::MDrawView* const canvas = editor.canvas();
    if (!canvas) return -1;
    int picture = 0;
    if (isSealed) {
        kalim::SealedDocument sealed = canvas->sealedDocument();
        sealedPicture = sealed.picture ? kalim::gfx::HtmlRaster::of(*sealed.picture) : nullptr;
        picture = sealedPicture ? sealedPicture->picture() : -1;
        if (sealedPicture) kalim::tellExported(picture, sealed.exported);
        saved = std::move(sealed.document);
    } else {
        saved = canvas->document();
    }
    editor.show();
    return picture;
}

// The buffer holds the picture file's type, its hash, and what stands for its bytes, which the page
// puts in by itself; without a type it keeps the one that it has. The answer is the text.
KALIM_EXPORT("end_document") void endDocument(int typeLength, int hashLength, int length) {
    if (!saved) return;
    if (saved->picture) {
        kalim::DocumentPicture& picture = *saved->picture;
        std::string_view given = kalim::pageText(std::numeric_limits<int>::max());
        const std::string_view type = takeFrom(given, typeLength);
        if (!type.empty()) picture.mediaType = type;
        picture.sha256 = takeFrom(given, hashLength);
        picture.data = takeFrom(given, length);
        picture.file.clear();
    }
    kalim::setPageAnswer(kalim::documentText(*saved));
    saved = std::nullopt;
    sealedPicture = nullptr;
}

// For pages that the browser gives no hashes: the answer is that of the buffer's bytes.
KALIM_EXPORT("hash") void hash(int length) {
    kalim::setPageAnswer(kalim::sha256(kalim::pageText(length)));
    kalim::dropPageText();
}
