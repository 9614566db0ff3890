// Draws an arrow over a photo with one finger and writes the composite.
#include <cstdio>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/ui/window/Window.h"

using namespace kalim;

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("usage: headless-host PHOTO OUT.png\n", stderr), 2;
    auto photo = codec::decodeFile(argv[1]);
    if (photo.error) return std::fprintf(stderr, "%s\n", photo.error->c_str()), 2;

    const auto device = gfx::CairoDevice::make();
    ui::Environment::install(std::make_shared<HeadlessEnvironment>(*device, 2.0));
    ui::Window window({390, 844});
    const auto canvas = MDrawView::initWithFrame({{}, window.size()});
    window.rootView()->addSubview(canvas);
    canvas->setSnipImage(device->makeImage(std::move(photo.bitmap), 1, photo.orientation));

    canvas->beginDrawingForTypeWithDrawType(ToolType::Arrow, 0);
    canvas->setDrawLineWidth(12);
    window.fingersBegan({{1, {300, 320}}});
    window.fingersMoved({{1, {200, 420}}});
    window.fingersEnded({{1, {200, 420}}});

    // With every pixel of the photo; exportImage() is as large as the canvas shows it.
    codec::Bytes file;
    auto problem = codec::encodePng(*canvas->exportImageAtPictureScale()->pixels(), file);
    if (!problem) problem = codec::writeFileAtomically(argv[2], file);
    if (problem) std::fprintf(stderr, "%s\n", problem->c_str());
    ui::Environment::install(nullptr);
    return problem ? 2 : 0;
}
