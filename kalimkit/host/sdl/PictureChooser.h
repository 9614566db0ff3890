#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim {

// What is chosen: a file to open, or a name to write a picture to.
enum class ChooserKind { Picture, PictureOrDocument, NewPicture };

// Lets the user choose a picture file, or a document as well, in the desktop's own dialog, which is
// the zenity program's. Meanwhile the window goes on.
class PictureChooser {
public:
    // The chosen path; nothing once the user has cancelled, or the program has failed.
    using Chosen = std::function<void(std::optional<std::string> path)>;

    // The run loop must outlive it.
    explicit PictureChooser(ui::RunLoop& runLoop) : _runLoop(runLoop) {}
    // A dialog that is open goes, and nothing is told.
    ~PictureChooser();
    PictureChooser(const PictureChooser&) = delete;
    PictureChooser& operator=(const PictureChooser&) = delete;

    // False where there is no program to ask with; nothing is told then. While a dialog is open
    // already, another question counts as cancelled.
    bool choose(const std::string& title, const Chosen& chosen,
                ChooserKind kind = ChooserKind::Picture);

private:
    bool start(const std::string& title, ChooserKind kind);
    void look();
    void finish();

    ui::RunLoop& _runLoop;
    Chosen _chosen;
    // 0 and -1 while no dialog is open.
    pid_t _process = 0;
    int _output = -1;
    std::string _text;
    // Lets go of what the run loop still holds.
    std::shared_ptr<bool> _isAlive = std::make_shared<bool>(true);
};

}  // namespace kalim
