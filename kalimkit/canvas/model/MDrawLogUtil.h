#pragma once

#include <functional>
#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// The process's one log relay: hands each log text to the host's callback; without one, texts are
// dropped.
class KALIM_API MDrawLogUtil {
public:
    using LogTransferBlock = std::function<void(const std::string& text)>;

    static MDrawLogUtil& sharedInstance();
    MDrawLogUtil(const MDrawLogUtil&) = delete;
    MDrawLogUtil& operator=(const MDrawLogUtil&) = delete;

    // An empty one takes the callback away.
    void setLogTransferBlock(LogTransferBlock block) { _transfBlock = std::move(block); }
    // The callback deliberately gets the bare message; the method's name goes nowhere.
    void logInfoMethodName(const std::string& message, const std::string& method) const;

private:
    MDrawLogUtil() = default;

    LogTransferBlock _transfBlock;
};

}  // namespace kalim
