#pragma once

#include <string_view>

namespace kalim::codec {

// What stands in front of blocks of data in a JPEG's segments, and tells them apart.
namespace prefixes {

using std::string_view_literals::operator""sv;

constexpr std::string_view exif = "Exif\0\0"sv;
constexpr std::string_view xmp = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view longXmp = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view photoshop = "Photoshop 3.0\0"sv;

}  // namespace prefixes

}  // namespace kalim::codec
