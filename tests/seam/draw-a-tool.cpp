#include <cstdio>
#include <string>

#include "kalimkit/shapes/MDrawRect.h"
#include "tests/support/RecordingDevice.h"

// Draws one rectangle into a device that writes down what it is told, prints that, and fails when
// the rectangle is not among it.
int main() {
    kalim::test::RecordingDevice device;
    const auto surface = device.makeSurface({200, 100}, 2, false);
    const auto tool = kalim::MDrawRect::initWithStartPoint({10, 20});
    tool->setEndPoint({110, 80});
    tool->setColor(kalim::gfx::makeColor(1, 0, 0));
    tool->draw(surface->context());

    bool isDrawn = false;
    for (const std::string& line : kalim::test::RecordingDevice::recording(*surface).lines()) {
        std::puts(line.c_str());
        isDrawn = isDrawn || line.starts_with("stroke [M 10,20 L 110,20 ");
    }
    return isDrawn ? 0 : 1;
}
