#include "kalimkit/shapes/CountText.h"

#include <utility>

namespace kalim {

namespace {

constexpr int largestRoman = 3999;

// After z comes aa.
std::string letters(int number, char first) {
    constexpr int count = 26;
    std::string text;
    for (; number > 0; number = (number - 1) / count)
        text.insert(text.begin(), static_cast<char>(first + (number - 1) % count));
    return text;
}

std::string roman(int number) {
    constexpr std::pair<int, const char*> parts[] = {
        {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
        {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
    std::string text;
    for (const auto& [value, digits] : parts) {
        for (; number >= value; number -= value)
            text += digits;
    }
    return text;
}

}  // namespace

std::string countText(int number, std::string_view style) {
    if (number > 0 && style == "a") return letters(number, 'a');
    if (number > 0 && style == "A") return letters(number, 'A');
    if (number > 0 && number <= largestRoman && style == "i") return roman(number);
    return std::to_string(number);
}

}  // namespace kalim
