#pragma once

#include <cstdint>
#include <memory>

#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

class CairoResources;

// Draws in memory with Cairo and sets text with Pango. Surfaces and images stay usable after the
// device is gone. A surface's sides are at most 32767 pixels. The system font is WenQuanYi Micro
// Hei where it is installed; text larger than 16000 pixels is not drawn. One thread at a time.
class KALIM_API CairoDevice : public Device {
public:
    static std::shared_ptr<CairoDevice> make();
    ~CairoDevice() override;

    std::shared_ptr<Surface> makeSurface(Size size, double scale, bool opaque) override;
    ImageRef makeImage(Bitmap bitmap, double scale, ImageOrientation orientation) override;

    std::vector<double> advances(std::string_view text, const Font& font) override;
    LineMetrics lineMetrics(const Font& font) override;
    std::vector<std::size_t> boundaries(std::string_view text, TextBoundary kind) override;
    TextDirections directions(std::string_view paragraph, BaseDirection base) override;
    AddedFont addFont(std::vector<std::uint8_t> file) override;

    // What is drawn on a surface of such a device, in place and in Bitmap's layout, until the next
    // call on its context; for a host that presents it. The alpha bytes of an opaque surface mean
    // nothing. Null for a surface of another device.
    static const std::uint8_t* pixels(const Surface& surface);

    // Gives back what the font libraries keep for the whole process, so that a leak checker finds
    // nothing at its end. No device, surface or image of a device may be alive. Waits for the font
    // libraries' own threads, and does nothing where the process has others.
    static void releaseFontCaches();

private:
    CairoDevice();

    std::shared_ptr<CairoResources> _resources;
};

}  // namespace kalim::gfx
