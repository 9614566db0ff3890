#include "kalimkit/tool/MDrawLogUtil.h"

#include <utility>

namespace kalim {

MDrawLogUtil& MDrawLogUtil::sharedInstance() {
    static MDrawLogUtil instance;
    return instance;
}

void MDrawLogUtil::setLogTransferBlock(LogTransferBlock block, const void* setter) {
    _transfBlock = std::move(block);
    _setter = setter;
}

void MDrawLogUtil::clearLogTransferBlock(const void* setter) {
    if (_setter == setter) setLogTransferBlock({});
}

void MDrawLogUtil::logInfoMethodName(const std::string& message, const std::string&) const {
    // A copy, so that the callback may replace itself while it runs.
    if (const LogTransferBlock block = _transfBlock) block(message);
}

}  // namespace kalim
