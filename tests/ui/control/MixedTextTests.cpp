#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/ui/control/TextEditor.h"
#include "tests/support/TestHost.h"

// What holds of every text, whatever scripts it mixes.

namespace kalim::ui {
namespace {

// Made of pieces of several scripts, always the same.
std::vector<std::string> corpus() {
    const std::string pieces[] = {
        "Hello",  "fi",      "שלום", "עברית",  "مرحبا",  "کتاب",   "لا",       "नमस्ते",
        "क्षत्रिय", "สวัสดี",    "ที่นี่",   "漢字",   "かな",   "한국어", "👍🏽", "👨‍👩‍👧",
        "🇫🇷🇯🇵",   "12.5%",   "٣٤",   "(",      ")",      "[x]",    " ",        "  ",
        ", ",     "e\u0301", "\t",   "\u200E", "\u2067", "\u2069", "\u202B",   "\u202C",
        "\u200D", "-",       "\n"};
    std::vector<std::string> texts;
    unsigned noise = 18;
    const auto next = [&noise](std::size_t below) {
        noise = noise * 1664525U + 1013904223U;
        return (noise >> 8U) % below;
    };
    for (int i = 0; i < 300; ++i) {
        std::string text;
        for (std::size_t count = 1 + next(9); count > 0; --count)
            text += pieces[next(std::size(pieces))];
        texts.push_back(gfx::plainText(text));
    }
    return texts;
}

// Goes on as one reads, or back, until nothing moves; the places on the way.
std::vector<gfx::TextPosition> walk(const gfx::TextLayout& layout, gfx::TextPosition from,
                                    bool isForward) {
    std::vector<gfx::TextPosition> places{from};
    // A line may be entered at its end, too, and has two ends.
    const std::size_t most = 3 * layout.text().size() + 3 * layout.lines().size() + 3;
    while (places.size() < most) {
        const gfx::TextPosition last = places.back();
        const bool isRight = layout.isRightToLeft(last.offset) != isForward;
        const gfx::TextPosition next = isRight ? layout.rightOf(last) : layout.leftOf(last);
        if (next == last) break;
        places.push_back(next);
    }
    EXPECT_LT(places.size(), most) << "there is no end: " << layout.text();
    return places;
}

// On each line the carets go one way, from one end of what is seen to the other.
void expectOneWay(const gfx::TextLayout& layout, const std::vector<gfx::TextPosition>& places,
                  bool isForward) {
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (layout.lineOf(places[i - 1]) != layout.lineOf(places[i])) continue;
        const bool isRight = layout.isRightToLeft(places[i].offset) != isForward;
        const double before = layout.caretRect(places[i - 1]).minX();
        const double after = layout.caretRect(places[i]).minX();
        EXPECT_GE(isRight ? after - before : before - after, -1e-6)
            << layout.text() << " at " << places[i].offset;
    }
}

TEST(MixedText, EveryPlaceIsReachedByLeftAndRightInTheOrderThatIsSeen) {
    test::TestHost host;
    gfx::Device& device = host.environment().device();
    for (const std::string& text : corpus()) {
        for (const double width : {gfx::TextLayout::unlimited, 60.0}) {
            const gfx::TextLayout layout(device, text, {"", 16},
                                         {width, gfx::TextLayout::unlimited});
            const auto start = walk(layout, {}, false).back();
            const auto forwards = walk(layout, start, true);
            const auto backwards = walk(layout, forwards.back(), false);
            expectOneWay(layout, forwards, true);
            expectOneWay(layout, backwards, false);
            EXPECT_EQ(backwards.back(), start) << text;
            std::set<std::size_t> reached;
            for (const auto* places : {&forwards, &backwards}) {
                for (const gfx::TextPosition& place : *places)
                    reached.insert(place.offset);
            }
            std::set<std::size_t> all;
            for (std::size_t offset = 0;; offset = layout.graphemeAfter(offset)) {
                all.insert(offset);
                if (offset >= text.size()) break;
            }
            EXPECT_EQ(reached, all) << text;
        }
    }
}

TEST(MixedText, WhatIsSeenIsSelectedAndCopiedAsItWasTyped) {
    test::TestHost host;
    for (const std::string& text : corpus()) {
        TextEditor editor(host.environment().device());
        editor.setWidth(120);
        // As an input method does: composed, and then settled.
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = host.environment().device().boundaries(
                                        text.substr(begin), gfx::TextBoundary::Grapheme)[1] +
                                    begin;
            const std::string typed = text.substr(begin, end - begin);
            editor.setMarkedText(typed, {typed.size(), typed.size()});
            editor.insert(typed);
            begin = end;
        }
        EXPECT_EQ(editor.text(), text);
        editor.selectAll();
        double selected = 0;
        for (const gfx::Rect& rect : editor.layout().selectionRects({0, text.size()}))
            selected += rect.size.width;
        double seen = 0;
        for (const gfx::TextLine& line : editor.layout().lines())
            seen += line.width;
        EXPECT_GE(selected, seen - 1e-6) << text;
        editor.copy();
        EXPECT_EQ(Environment::current().clipboardText(), text);
        editor.cut();
        EXPECT_TRUE(editor.text().empty());
        editor.undo();
        EXPECT_EQ(editor.text(), text);
    }
}

}  // namespace
}  // namespace kalim::ui
