#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/WorkStore.h"

namespace kalim {

// What the hosts that show their window to a user have in common: the window is the screen, alerts
// are shown in it, and there is a language that its texts are to have. Where these come from, what
// it draws with, the wall clock and what the user keeps are the derived class's.
class KALIM_API SeatEnvironment : public ui::Environment {
public:
    // Texts have the language of the locale from now on, such as "en-GB" or "zh_CN.UTF-8"; Chinese
    // at first.
    virtual void setLanguage(std::string_view locale);
    std::string language() const override { return _language; }
    // The locale of the process's messages, by the variables that name it; may be empty.
    static std::string messageLocale();

    ui::Screen screen() const override { return _screen; }
    // The window stands for the screen: its native size is the window's, in pixels. A window that
    // exists keeps its scale until it gets another size.
    void setScreen(const ui::Screen& screen) { _screen = screen; }
    ui::RunLoop& runLoop() override { return _loop; }
    // It is four times the screen, and no less than 2560 x 1440 pixels.
    std::optional<gfx::Size> areaBudget() const override;
    ui::WorkStore* workStore() override { return _workStore.get(); }
    void setWorkStore(std::shared_ptr<ui::WorkStore> store) { _workStore = std::move(store); }
    void presentAlert(const ui::Alert& alert) override;
    // Shows an alert of one button; the texts are keys of localizedString().
    void tell(const std::string& title, const std::string& message = {});

protected:
    // For setLanguage(), once there are texts in the language, named so.
    void speak(std::string language);

private:
    ui::Screen _screen;
    ui::RunLoop _loop;
    std::string _language = "zh";
    std::shared_ptr<ui::WorkStore> _workStore;
};

}  // namespace kalim
