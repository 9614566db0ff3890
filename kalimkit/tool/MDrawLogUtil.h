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

    // An empty one takes the callback away. The setter is only compared.
    void setLogTransferBlock(LogTransferBlock block, const void* setter = nullptr);
    // Takes the callback away if that setter has set it.
    void clearLogTransferBlock(const void* setter);
    // The callback deliberately gets the bare message; the method's name goes nowhere.
    void logInfoMethodName(const std::string& message, const std::string& method) const;

private:
    MDrawLogUtil() = default;

    LogTransferBlock _transfBlock;
    const void* _setter = nullptr;
};

}  // namespace kalim
