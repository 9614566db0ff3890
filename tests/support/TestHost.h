#pragma once

#include <memory>
#include <vector>

#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

struct TestHostOptions {
    // So many pixels make a point.
    double scale = 1;
    // The window is this large, in points.
    gfx::Size size{390, 844};
    // Null stands for a Cairo device.
    std::shared_ptr<gfx::Device> device = nullptr;
};

// A headless environment in force for the length of a scope, with one window that is displayed at
// every display tick.
class TestHost {
public:
    explicit TestHost(TestHostOptions options = {});
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    HeadlessEnvironment& environment() { return *_environment; }
    ui::RunLoop& loop() { return _environment->runLoop(); }
    ui::Window& window() { return _window; }
    // Waits seconds.
    void wait(double seconds) { _environment->wait(seconds); }
    std::vector<ui::Alert> takeAlerts() { return _environment->takeAlerts(); }

private:
    // Puts the environment into force that was so before.
    struct Installation {
        explicit Installation(std::shared_ptr<ui::Environment> environment);
        ~Installation();
        std::shared_ptr<ui::Environment> previous;
    };

    std::shared_ptr<gfx::Device> _device;
    std::shared_ptr<HeadlessEnvironment> _environment;
    Installation _installation;
    ui::Window _window;
};

}  // namespace kalim::test
