#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/host/browser/BrowserEditor.h"

namespace kalim {

// The module's one editor; null before the page has made it and once it has been destroyed.
BrowserEditor* pageEditor();

// What the page has put into the module's buffer, so many bytes of it or as many as there are,
// until its next call.
std::string_view pageText(int length);
// The same of numbers.
std::vector<double> pageNumbers(int count);
// Gives the buffer's memory back, after something large.
void dropPageText();

// What a call has to say beside its answer, such as what is wrong; the page takes it at once.
void setPageAnswer(std::string answer);

}  // namespace kalim
