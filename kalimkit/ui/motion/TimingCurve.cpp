#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

namespace {

// Yields one coordinate of the curve from 0 to 1 with these two controls.
double bezier(double t, double control1, double control2) {
    const double u = 1 - t;
    return 3 * u * u * t * control1 + 3 * u * t * t * control2 + t * t * t;
}

// The curve whose controls have these times and lie at 0 and at 1.
double easeBetween(double time1, double time2, double share) {
    double low = 0;
    double high = 1;
    // Both coordinates grow with the parameter, so that halving finds it.
    for (int step = 0; step < 40; ++step) {
        const double middle = (low + high) / 2;
        (bezier(middle, time1, time2) < share ? low : high) = middle;
    }
    return bezier((low + high) / 2, 0, 1);
}

}  // namespace

double ease(TimingCurve curve, double share) {
    if (!(share > 0)) return 0;
    if (share >= 1) return 1;
    switch (curve) {
        case TimingCurve::Linear:
            return share;
        case TimingCurve::EaseIn:
            return easeBetween(0.42, 1, share);
        case TimingCurve::EaseOut:
            return easeBetween(0, 0.58, share);
        case TimingCurve::EaseInOut:
            return easeBetween(0.42, 0.58, share);
    }
    return share;
}

double easeInOut(double share) {
    return ease(TimingCurve::EaseInOut, share);
}

}  // namespace kalim::ui
