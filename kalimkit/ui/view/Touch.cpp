#include "kalimkit/ui/view/Touch.h"

#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

namespace {

gfx::Point inView(gfx::Point windowPoint, const View* view) {
    return view ? view->convertPointFrom(windowPoint, nullptr) : windowPoint;
}

}  // namespace

Touch::Touch(std::int64_t id, gfx::Point windowLocation, Time time, TouchContact contact)
    : _id(id),
      _location(windowLocation),
      _previous(windowLocation),
      _time(time),
      _contact(contact) {}

gfx::Point Touch::locationIn(const View* view) const {
    return inView(_location, view);
}

gfx::Point Touch::previousLocationIn(const View* view) const {
    return inView(_previous, view);
}

}  // namespace kalim::ui
