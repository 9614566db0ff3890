#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "examples/kind/Star.h"
#include "kalimkit/shapes/ToolRegistry.h"

// The outline of a star, on a square of 24 points.
inline constexpr std::int16_t starSteps[] = {kalim::IconMove,
                                             1200,
                                             300,
                                             kalim::IconLine,
                                             1450,
                                             950,
                                             kalim::IconLine,
                                             2100,
                                             950,
                                             kalim::IconLine,
                                             1600,
                                             1350,
                                             kalim::IconLine,
                                             1800,
                                             2000,
                                             kalim::IconLine,
                                             1200,
                                             1600,
                                             kalim::IconLine,
                                             600,
                                             2000,
                                             kalim::IconLine,
                                             800,
                                             1350,
                                             kalim::IconLine,
                                             300,
                                             950,
                                             kalim::IconLine,
                                             950,
                                             950,
                                             kalim::IconClose,
                                             kalim::IconStroke,
                                             255,
                                             255,
                                             255,
                                             100,
                                             175};
inline constexpr kalim::Icon starIcon{"star", 24, 24, starSteps};

// Makes stars a pen of the current environment. Answers with what is wrong with it.
inline std::optional<std::string> addStarPen() {
    return kalim::ToolRegistry::add(Star::Class(), {.name = "star",
                                                    .key = 'j',
                                                    .icon = "star",
                                                    .text = "星形",
                                                    .english = "Star",
                                                    .showsToolIcon = true,
                                                    .drawing = &starIcon});
}
