#include "kalimkit/ui/environment/LocalText.h"

#include <algorithm>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

const TextArgument* argumentNamed(std::string_view name,
                                  std::initializer_list<TextArgument> arguments) {
    if (name.empty()) return arguments.size() ? arguments.begin() : nullptr;
    const auto* const found = std::ranges::find(arguments, name, &TextArgument::name);
    return found == arguments.end() ? nullptr : found;
}

}  // namespace

std::string filledText(std::string_view text, std::initializer_list<TextArgument> arguments) {
    std::string filled;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text[begin] == '{' ? text.find('}', begin) : std::string::npos;
        const TextArgument* const argument =
            end == std::string::npos
                ? nullptr
                : argumentNamed(text.substr(begin + 1, end - begin - 1), arguments);
        if (argument) filled += argument->value;
        if (!argument) filled += text[begin];
        begin = argument ? end + 1 : begin + 1;
    }
    return filled;
}

std::string localText(const std::string& key, std::initializer_list<TextArgument> arguments) {
    const Environment& environment = Environment::current();
    const auto* const counted = std::ranges::find_if(
        arguments, [](const TextArgument& argument) { return argument.count.has_value(); });
    const std::string text = counted == arguments.end()
                                 ? environment.localizedString(key)
                                 : environment.localizedCount(key, *counted->count);
    return filledText(text, arguments);
}

std::string hostText(std::string_view text, std::string_view english) {
    const Environment& environment = Environment::current();
    std::string local = environment.localizedString(std::string(text));
    const std::string language = environment.language();
    const bool isChinese = language.empty() || language == "zh" || language.starts_with("zh-");
    return local == text && !english.empty() && !isChinese ? std::string(english) : local;
}

}  // namespace kalim::ui
