#include "kalimkit/canvas/model/MDrawLogUtil.h"

namespace kalim {

MDrawLogUtil& MDrawLogUtil::sharedInstance() {
    static MDrawLogUtil instance;
    return instance;
}

void MDrawLogUtil::logInfoMethodName(const std::string& message, const std::string&) const {
    // A copy, so that the callback may replace itself while it runs.
    if (const LogTransferBlock block = _transfBlock) block(message);
}

}  // namespace kalim
