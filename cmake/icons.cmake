# Writes the pictures `icons`, SVG files, as data for kalimkit/theme/IconTable.h into `output`.
#
# The files keep to a small part of SVG, and anything else in them is an error that names it: <svg>
# with whole width and height; <path> of absolute M, L, C and Z, each with its letter; <rect>,
# <circle>; fill and stroke as "none" or #rrggbb, stroke-width and opacity, of which <svg> may give
# the first three for all; round caps and joins; a fill by the file's one <linearGradient>, which
# runs from top to bottom in one colour. Numbers have at most two decimals.
cmake_minimum_required(VERSION 3.25)

# kalim_attribute(RESULT ELEMENT NAME [DEFAULT]) reads an attribute of an element.
function(kalim_attribute result element name)
  if("${element}" MATCHES "[ \n]${name}=\"([^\"]*)\"")
    set(${result} "${CMAKE_MATCH_1}" PARENT_SCOPE)
  elseif(ARGC GREATER 3)
    set(${result} "${ARGV3}" PARENT_SCOPE)
  else()
    message(FATAL_ERROR "${file}: no ${name} in ${element}")
  endif()
endfunction()

# kalim_hundredths(RESULT NUMBER...): "12.5" is 1250.
function(kalim_hundredths result)
  set(list)
  foreach(number IN LISTS ARGN)
    if(NOT "${number}" MATCHES "^(-?)([0-9]+)(\\.([0-9][0-9]?))?$")
      message(FATAL_ERROR "${file}: \"${number}\" is no number of at most two decimals")
    endif()
    set(sign ${CMAKE_MATCH_1})
    string(SUBSTRING "${CMAKE_MATCH_4}00" 0 2 decimals)
    string(REGEX REPLACE "^0+([0-9])" "\\1" digits "${CMAKE_MATCH_2}${decimals}")
    list(APPEND list ${sign}${digits})
  endforeach()
  set(${result} "${list}" PARENT_SCOPE)
endfunction()

function(kalim_color result text)
  if(NOT text MATCHES "^#([0-9a-f][0-9a-f])([0-9a-f][0-9a-f])([0-9a-f][0-9a-f])$")
    message(FATAL_ERROR "${file}: \"${text}\" is no colour like #1d1d1d")
  endif()
  set(${result} "0x${CMAKE_MATCH_1};0x${CMAKE_MATCH_2};0x${CMAKE_MATCH_3}" PARENT_SCOPE)
endfunction()

# kalim_path(RESULT DATA) turns a path's data into steps.
function(kalim_path result data)
  string(REGEX MATCHALL "[A-Za-z]|[-.0-9]+" tokens "${data}")
  set(list)
  set(wanted 0)
  foreach(token IN LISTS tokens)
    if(wanted GREATER 0)
      kalim_hundredths(number ${token})
      list(APPEND list ${number})
      math(EXPR wanted "${wanted} - 1")
    elseif(token STREQUAL "M" OR token STREQUAL "L")
      string(REPLACE M IconMove step ${token})
      string(REPLACE L IconLine step ${step})
      list(APPEND list ${step})
      set(wanted 2)
    elseif(token STREQUAL "C")
      list(APPEND list IconCubic)
      set(wanted 6)
    elseif(token STREQUAL "Z")
      list(APPEND list IconClose)
    else()
      message(FATAL_ERROR "${file}: \"${token}\" does not belong into the path ${data}")
    endif()
  endforeach()
  if(wanted)
    message(FATAL_ERROR "${file}: the path ${data} is cut short")
  endif()
  set(${result} "${list}" PARENT_SCOPE)
endfunction()

# kalim_shape(RESULT TAG ELEMENT): the steps that build the element's path.
function(kalim_shape result tag element)
  set(names x y width height)
  set(list IconRect)
  if(tag STREQUAL "path")
    kalim_attribute(data "${element}" d)
    kalim_path(list "${data}")
    set(names)
  elseif(tag STREQUAL "circle")
    set(names cx cy r)
    set(list IconCircle)
  endif()
  foreach(name IN LISTS names)
    kalim_attribute(text "${element}" ${name})
    kalim_hundredths(number ${text})
    list(APPEND list ${number})
  endforeach()
  set(${result} "${list}" PARENT_SCOPE)
endfunction()

# kalim_element(RESULT TAG ELEMENT): the steps that paint the element; `svg` is the root, and `fade`
# the numbers of the gradient.
function(kalim_element result tag element)
  kalim_shape(shape ${tag} "${element}")
  kalim_attribute(opacity "${element}" opacity 1)
  kalim_hundredths(opacity ${opacity})
  foreach(name fill stroke stroke-width)
    kalim_attribute(${name} "${svg}" ${name} none)
    kalim_attribute(${name} "${element}" ${name} ${${name}})
  endforeach()
  set(list)
  if(fill MATCHES "^url")
    list(APPEND list ${shape} IconFade ${fade})
  elseif(NOT fill STREQUAL "none")
    kalim_color(color ${fill})
    list(APPEND list ${shape} IconFill ${color} ${opacity})
  endif()
  if(NOT stroke STREQUAL "none")
    kalim_color(color ${stroke})
    kalim_hundredths(width ${stroke-width})
    list(APPEND list ${shape} IconStroke ${color} ${opacity} ${width})
  endif()
  set(${result} "${list}" PARENT_SCOPE)
endfunction()

set(arrays)
set(table)
foreach(file IN LISTS icons)
  get_filename_component(name ${file} NAME_WE)
  file(READ ${file} text)
  string(REGEX MATCHALL "<[^>]+>" elements "${text}")
  set(steps)
  set(fade)
  set(stops 0)
  foreach(element IN LISTS elements)
    string(REGEX MATCH "^</?[a-zA-Z]*" tag "${element}")
    string(SUBSTRING "${tag}" 1 -1 tag)
    if(tag STREQUAL "svg")
      set(svg "${element}")
      kalim_attribute(width "${svg}" width)
      kalim_attribute(height "${svg}" height)
    elseif(tag MATCHES "^(path|rect|circle)$")
      kalim_element(list ${tag} "${element}")
      list(APPEND steps ${list})
    elseif(tag STREQUAL "stop")
      kalim_attribute(offset "${element}" offset)
      kalim_attribute(opacity "${element}" stop-opacity)
      kalim_attribute(color "${element}" stop-color)
      kalim_hundredths(numbers ${offset} ${opacity})
      math(EXPR stops "${stops} + 1")
      list(APPEND stop_numbers ${numbers})
    elseif(tag STREQUAL "linearGradient")
      set(stop_numbers)
    elseif(tag STREQUAL "/linearGradient")
      kalim_color(color ${color})
      set(fade ${color} ${stops} ${stop_numbers})
    elseif(NOT tag STREQUAL "/svg")
      message(FATAL_ERROR "${file}: ${element} is beyond what is understood of SVG")
    endif()
  endforeach()
  list(JOIN steps ", " steps)
  string(APPEND arrays "constexpr std::int16_t ${name}[] = {${steps}};\n")
  string(APPEND table "    {\"${name}\", ${width}, ${height}, ${name}},\n")
endforeach()

file(WRITE ${output} "// Written by cmake/icons.cmake from kalimkit/resources.
#include \"kalimkit/theme/IconTable.h\"

namespace kalim {

namespace {

${arrays}
constexpr Icon icons[] = {
${table}};

}  // namespace

std::span<const Icon> frameworkIcons() {
    return icons;
}

}  // namespace kalim
")
