// The page's functions instead of those of the C library, whose tables of numbers, which cannot be
// compressed, would be a good part of what a page loads. Both are right to the last bit or nearly.

#define KALIM_MATH(name) __attribute__((import_module("Math"), import_name(name)))

namespace page {

KALIM_MATH("sin") double sine(double angle);
KALIM_MATH("cos") double cosine(double angle);
KALIM_MATH("tan") double tangent(double angle);
KALIM_MATH("atan2") double angle(double y, double x);
KALIM_MATH("exp") double exponential(double exponent);
KALIM_MATH("log") double logarithm(double number);
KALIM_MATH("pow") double power(double base, double exponent);

}  // namespace page

extern "C" {

double sin(double angle) {
    return page::sine(angle);
}
double cos(double angle) {
    return page::cosine(angle);
}
double tan(double angle) {
    return page::tangent(angle);
}
double atan2(double y, double x) {
    return page::angle(y, x);
}
double exp(double exponent) {
    return page::exponential(exponent);
}
double log(double number) {
    return page::logarithm(number);
}
double pow(double base, double exponent) {
    return page::power(base, exponent);
}

}  // extern "C"
