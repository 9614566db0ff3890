# Writes the catalogues `texts`, JSON files, and the plural rules, the file `plurals`, as data for
# kalimkit/theme/GivenTexts.h into `output`.
cmake_minimum_required(VERSION 3.25)

# The text of a file as C++ has it.
function(kalim_literal result file)
  file(READ ${file} text)
  string(FIND "${text}" ")kalim\"" place)
  if(NOT place EQUAL -1)
    message(FATAL_ERROR "${file}: it has what ends a literal")
  endif()
  set(${result} "R\"kalim(${text})kalim\"" PARENT_SCOPE)
endfunction()

set(table)
foreach(file IN LISTS texts)
  get_filename_component(language ${file} NAME_WE)
  kalim_literal(literal ${file})
  string(APPEND table "    {\"${language}\",\n     ${literal}},\n")
endforeach()
kalim_literal(rules ${plurals})
list(LENGTH texts count)

file(WRITE ${output} "// Written by cmake/texts.cmake from kalimkit/resources/texts.
#include \"kalimkit/theme/GivenTexts.h\"

#include <array>

namespace kalim {

namespace {

constexpr std::array<GivenTexts, ${count}> catalogues{{
${table}}};

}  // namespace

std::span<const GivenTexts> givenTexts() {
    return catalogues;
}

std::string_view givenPluralRules() {
    return ${rules};
}

}  // namespace kalim
")
