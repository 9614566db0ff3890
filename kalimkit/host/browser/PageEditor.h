#pragma once

#include "kalimkit/host/browser/BrowserEditor.h"

namespace kalim {

// The module's one editor; null before the page has made it and once it has been destroyed.
BrowserEditor* pageEditor();

}  // namespace kalim
