#include "kalimkit/host/seat/ReopenQuestion.h"

#include <cstddef>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void askToReopen(std::function<void(bool goesOn)> answer) {
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert(
        {environment.localizedString("继续编辑标注？"),
         environment.localizedString("此图片中保存了可编辑的标注"),
         {environment.localizedString("从图片开始"), environment.localizedString("继续编辑")},
         [answer = std::move(answer)](std::size_t button) { answer(button == 1); }});
}

}  // namespace kalim
