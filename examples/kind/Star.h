#pragma once

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

#include "kalimkit/shapes/MDrawRect.h"

// A star in the box of its two points. A handle at an inner corner says how deep it is cut.
class Star : public kalim::MDrawRect {
public:
    // ---- what it is: its name, its base, how one is made, and where it differs from the base
    static const kalim::ToolClass& Class() {
        static const kalim::ToolClass toolClass{"Star",
                                                &kalim::MDrawRect::Class(),
                                                &kalim::MDrawTool::makeToolAt<Star>,
                                                {.label = "{} star"}};
        return toolClass;
    }
    const kalim::ToolClass& toolClass() const override { return Class(); }

    // ---- drawing: the same for a finger on its way and for the finished tool. The context has the
    // tool's colour and width, and is turned as the tool is.
    void drawContent(kalim::gfx::Context& context) override {
        context.beginPath();
        context.addPath(outline());
        context.stroke();
    }
    void drawContentHandle(kalim::gfx::Context& context) override {
        MDrawRect::drawContentHandle(context);
        drawHandleAtPoint(context, corner(1));
    }

    // ---- hit testing: all of the box, so that the middle picks it, too
    bool hitTest(kalim::gfx::Point p) override { return frame().contains(invertPoint(p)); }

    // ---- dragging. The canvas moves the body and the corners by itself; the tool's own handle
    // goes by a direction that boxes do not use.
    void moveByOffsetEndPoint(kalim::gfx::Point offset, kalim::gfx::Point end) override {
        if (moveDirection() != ownHandle) return MDrawRect::moveByOffsetEndPoint(offset, end);
        const double reach = frame().size.height / 2 * std::cos(std::numbers::pi / 5);
        const double up = frame().center().y - invertPoint(end).y;
        if (reach > 0) _depth = std::clamp(up / reach, 0.1, 0.9);
    }

    // ---- undo: a step is a snapshot, of the base's values and its own
    kalim::Feature getFeature() const override {
        kalim::Feature feature = MDrawRect::getFeature();
        feature.set("Star-depth", _depth);
        return feature;
    }
    void setFeature(const kalim::FeatureRef& feature) override {
        if (!feature) return;
        if (const auto* depth = feature->get<double>("Star-depth")) _depth = *depth;
        MDrawRect::setFeature(feature);
    }

    // ---- what prints and documents say of it besides
    kalim::ToolDetails details() const override { return {{"depth", _depth}}; }
    bool takeDetail(std::string_view name, const kalim::ToolDetailValue& value) override {
        const auto* depth = std::get_if<double>(&value);
        if (name == "depth" && depth) _depth = std::clamp(*depth, 0.1, 0.9);
        return name == "depth" && depth;
    }

protected:
    Star() = default;
    kalim::MoveDirection handleAt(kalim::gfx::Point p) override {
        return isPointOnHandle(invertPoint(p), corner(1)) ? ownHandle : MDrawRect::handleAt(p);
    }

private:
    static constexpr auto ownHandle = kalim::MoveDirection::Start;

    // Ten of them, clockwise from the top; the odd ones lie inside.
    kalim::gfx::Point corner(int index) const {
        const kalim::gfx::Rect box = frame();
        const double angle = index * std::numbers::pi / 5;
        const double share = index % 2 == 0 ? 0.5 : _depth / 2;
        return {box.center().x + box.size.width * share * std::sin(angle),
                box.center().y - box.size.height * share * std::cos(angle)};
    }
    kalim::gfx::Path outline() const {
        kalim::gfx::Path path;
        for (int index = 0; index < 10; ++index)
            path.lineTo(corner(index));
        path.close();
        return path;
    }

    double _depth = 0.4;
};
