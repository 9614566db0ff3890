#include "kalimkit/image/SealedBlocks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace kalim {

namespace {

constexpr std::uint8_t middleGrey = 128;
// Of a block so many pixels are looked at along each side.
constexpr int samplesAlong = 8;
// A block is at most so much lighter or darker than what was spread to it: over an even rim, such
// as a sheet of paper, there are blocks all the same.
constexpr int largestContrast = 24;

struct Tone {
    int blue = 0;
    int green = 0;
    int red = 0;
};

// Numbers that look like chance and are the same for every picture.
std::uint32_t scattered(int x, int y) {
    std::uint32_t value = static_cast<std::uint32_t>(x) * 0x9E3779B1U +
                          static_cast<std::uint32_t>(y) * 0x85EBCA77U + 0x27D4EB2FU;
    value = (value ^ (value >> 16)) * 0x85EBCA6BU;
    value = (value ^ (value >> 13)) * 0xC2B2AE35U;
    return value ^ (value >> 16);
}

bool covers(const gfx::PixelRect& rect, int x, int y) {
    return x >= rect.x && x < rect.x + rect.width && y >= rect.y && y < rect.y + rect.height;
}

class Spread {
public:
    Spread(const gfx::Bitmap& picture, const gfx::PixelRects& hidden, int level)
        : _picture(picture),
          _hidden(hidden),
          _level(level),
          _columns((picture.width() + level - 1) / level),
          _rows((picture.height() + level - 1) / level),
          _blocks(static_cast<std::size_t>(_columns) * static_cast<std::size_t>(_rows)),
          _hiddenByRow(static_cast<std::size_t>(_rows)) {}

    gfx::Bitmap colors() {
        for (const gfx::PixelRect& rect : _hidden)
            if (!rect.isEmpty()) addToRows(rect);
        for (const gfx::PixelRect& rect : _hidden)
            if (!rect.isEmpty()) take(rect);
        while (!_frontier.empty())
            spreadOnce();
        return written();
    }

private:
    enum class State : std::uint8_t { Unneeded, Waiting, Next, Known };
    struct Block {
        State state = State::Unneeded;
        bool isHidden = false;
        Tone tone;
    };
    struct Place {
        int x;
        int y;
    };

    Block& at(Place place) {
        return _blocks[static_cast<std::size_t>(place.y) * static_cast<std::size_t>(_columns) +
                       static_cast<std::size_t>(place.x)];
    }

    template <typename Visit>
    void visit(Place first, Place last, const Visit& each) {
        for (int y = std::max(first.y, 0); y <= std::min(last.y, _rows - 1); ++y) {
            for (int x = std::max(first.x, 0); x <= std::min(last.x, _columns - 1); ++x)
                each(Place{x, y});
        }
    }

    template <typename Visit>
    void visitAround(Place place, const Visit& each) {
        visit({place.x - 1, place.y - 1}, {place.x + 1, place.y + 1}, each);
    }

    // Turned patches are hidden row by row: a block looks at those alone that meet its own row.
    void addToRows(const gfx::PixelRect& rect) {
        const int last = std::min((rect.y + rect.height - 1) / _level, _rows - 1);
        for (int row = std::max(rect.y / _level, 0); row <= last; ++row)
            _hiddenByRow[static_cast<std::size_t>(row)].push_back(&rect);
    }

    // The blocks that the region touches, and one more on each side.
    void take(const gfx::PixelRect& rect) {
        const Place first{rect.x / _level, rect.y / _level};
        const Place last{(rect.x + rect.width - 1) / _level, (rect.y + rect.height - 1) / _level};
        visit(first, last, [this](Place place) { at(place).isHidden = true; });
        visit({first.x - 1, first.y - 1}, {last.x + 1, last.y + 1}, [this](Place place) {
            Block& block = at(place);
            if (block.state != State::Unneeded) return;
            block.state = State::Waiting;
            if (!look(place, block.tone)) return;
            block.state = State::Known;
            _frontier.push_back(place);
        });
    }

    // The mean of what is visible of a block, without its alpha; false where nothing is.
    bool look(Place place, Tone& tone) const {
        const gfx::PixelRect own{place.x * _level, place.y * _level, _level, _level};
        std::vector<gfx::PixelRect> over;
        for (const gfx::PixelRect* const rect : _hiddenByRow[static_cast<std::size_t>(place.y)]) {
            if (rect->x < own.x + _level && own.x < rect->x + rect->width) over.push_back(*rect);
        }
        const int step = std::max(_level / samplesAlong, 1);
        std::int64_t sums[4] = {};
        for (int y = own.y + step / 2; y < std::min(own.y + _level, _picture.height()); y += step) {
            for (int x = own.x + step / 2; x < std::min(own.x + _level, _picture.width());
                 x += step) {
                const auto isOver = [&](const gfx::PixelRect& rect) { return covers(rect, x, y); };
                if (std::ranges::any_of(over, isOver)) continue;
                const std::uint8_t* const pixel =
                    _picture.row(y) + static_cast<std::ptrdiff_t>(x) * 4;
                for (int i = 0; i < 4; ++i)
                    sums[i] += pixel[i];
            }
        }
        if (sums[3] == 0) return false;
        const auto mean = [&](std::int64_t sum) {
            return static_cast<int>(
                std::min<std::int64_t>((sum * 255 + sums[3] / 2) / sums[3], 255));
        };
        tone = {mean(sums[0]), mean(sums[1]), mean(sums[2])};
        return true;
    }

    // One block further from all that is known.
    void spreadOnce() {
        std::vector<Place> next;
        for (const Place place : _frontier) {
            visitAround(place, [&](Place beside) {
                if (at(beside).state != State::Waiting) return;
                at(beside).state = State::Next;
                next.push_back(beside);
            });
        }
        for (const Place place : next)
            at(place).tone = toneFromBeside(place);
        for (const Place place : next)
            at(place).state = State::Known;
        _frontier = std::move(next);
    }

    // More of one neighbour than of all, so that colours are carried inwards instead of blending
    // into one.
    Tone toneFromBeside(Place place) {
        std::vector<Tone> known;
        visitAround(place, [&](Place beside) {
            if (at(beside).state == State::Known) known.push_back(at(beside).tone);
        });
        const int count = static_cast<int>(known.size());
        const Tone& chosen = known[scattered(place.x, place.y) % known.size()];
        Tone sum;
        for (const Tone& tone : known) {
            sum.blue += tone.blue;
            sum.green += tone.green;
            sum.red += tone.red;
        }
        const auto mixed = [&](int one, int all) { return (5 * one + 3 * all / count) / 8; };
        return {mixed(chosen.blue, sum.blue), mixed(chosen.green, sum.green),
                mixed(chosen.red, sum.red)};
    }

    gfx::Bitmap written() {
        gfx::Bitmap colors(_columns, _rows);
        visit({0, 0}, {_columns - 1, _rows - 1}, [&](Place place) {
            const Block& block = at(place);
            Tone tone{middleGrey, middleGrey, middleGrey};
            if (block.state == State::Known)
                tone = block.isHidden ? contrasted(place, block.tone) : block.tone;
            std::uint8_t* const pixel =
                colors.row(place.y) + static_cast<std::ptrdiff_t>(place.x) * 4;
            pixel[0] = static_cast<std::uint8_t>(tone.blue);
            pixel[1] = static_cast<std::uint8_t>(tone.green);
            pixel[2] = static_cast<std::uint8_t>(tone.red);
            pixel[3] = 255;
        });
        return colors;
    }

    static Tone contrasted(Place place, const Tone& tone) {
        int change = static_cast<int>(scattered(place.y, ~place.x) % (2 * largestContrast + 1)) -
                     largestContrast;
        if (std::max({tone.blue, tone.green, tone.red}) + change > 255) change = -std::abs(change);
        if (std::min({tone.blue, tone.green, tone.red}) + change < 0) change = std::abs(change);
        const auto changed = [&](int value) { return std::clamp(value + change, 0, 255); };
        return {changed(tone.blue), changed(tone.green), changed(tone.red)};
    }

    const gfx::Bitmap& _picture;
    const gfx::PixelRects& _hidden;
    int _level;
    int _columns;
    int _rows;
    std::vector<Block> _blocks;
    std::vector<std::vector<const gfx::PixelRect*>> _hiddenByRow;
    std::vector<Place> _frontier;
};

}  // namespace

gfx::Bitmap sealedColors(const gfx::Bitmap& picture, const gfx::PixelRects& hidden, int level) {
    if (picture.isEmpty() || level < 1) return {};
    return Spread(picture, hidden, level).colors();
}

}  // namespace kalim
