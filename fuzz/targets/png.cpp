#include "fuzz/Decoding.h"

KALIM_FUZZ(png, input) {
    kalim::fuzz::readPicture(input);
}
