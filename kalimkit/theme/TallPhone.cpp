#include "kalimkit/theme/TallPhone.h"

namespace kalim {

bool isTallPhone(const ui::Screen& screen) {
    const int height = screen.nativeSize.height;
    return screen.isPhone && (height == 2436 || height == 1792 || height == 2688);
}

}  // namespace kalim
