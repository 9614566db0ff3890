#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/editor/desk/DeskReading.h"
#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/tool/ToolProperty.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A control of the style bar for one property of tools, whatever that is of: numbers are sliders,
// or are counted up and down where there are many; a few choices with icons lie side by side,
// others are a menu; colours open the picker; switches are buttons.
class DeskProperty : public std::enable_shared_from_this<DeskProperty> {
public:
    // Chooses a value; whether it is the last of a movement.
    using Chosen =
        std::function<void(const std::string& name, const ToolPropertyValue& value, bool isFinal)>;

    // Null for a property that people cannot choose in a bar. The canvas is what the eyedropper
    // picks from.
    static std::shared_ptr<DeskProperty> make(const ToolProperty& property, const Chosen& chosen,
                                              const std::weak_ptr<ui::View>& canvas);
    virtual ~DeskProperty() = default;
    DeskProperty(const DeskProperty&) = delete;
    DeskProperty& operator=(const DeskProperty&) = delete;

    // Nothing where what is selected differs in it.
    virtual void show(const std::optional<ToolPropertyValue>& value) = 0;
    // From left to right; each has the size that it needs.
    virtual std::vector<EditorShell::Named> views() const = 0;

protected:
    DeskProperty(const ToolProperty& property, Chosen chosen)
        : _property(property), _chosen(std::move(chosen)) {}
    const ToolProperty& property() const { return _property; }
    std::string name() const { return std::string(_property.name); }
    void choose(const ToolPropertyValue& value, bool isFinal = true) const {
        _chosen(name(), value, isFinal);
    }

private:
    const ToolProperty& _property;
    Chosen _chosen;
};

}  // namespace kalim
